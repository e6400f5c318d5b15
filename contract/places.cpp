// The only place where the names of directories and files are put together.
#include "contract/places.h"

#include "contract/names.h"

namespace places
{

std::string area_in(const std::string& directory)
{
    return directory + "/" AREA_NAME;
}

std::string temporary_directory(const std::string& root)
{
    return root + "/" TEMPORARY_NAME;
}

std::string temporary_area(const std::string& root)
{
    return area_in(temporary_directory(root));
}

std::string work_area(const std::string& root, const std::string& module)
{
    return area_in(root + "/" + module);
}

std::string temporary_directory_near(const std::string& area)
{
    return temporary_directory(area + "/../..");
}

std::string db(const std::string& area)
{
    return area + "/db";
}

std::string numbered_db(const std::string& area, int number)
{
    return symbol_db(area, std::to_string(number));
}

std::string symbol_db(const std::string& area, const std::string& symbol)
{
    return db(area) + "/db" + symbol;
}

std::string ini(const std::string& area, const std::string& symbol)
{
    return area + "/ini/" + symbol + ".ini";
}

std::string saved_object(const std::string& area, const std::string& symbol)
{
    return area + "/obj/before/" + symbol;
}

std::string table(const std::string& directory)
{
    return directory + "/.tab";
}

std::string compile_command(const std::string& directory)
{
    return directory + "/CompileCmd.txt";
}

std::string record(const std::string& directory)
{
    return directory + "/record";
}

std::string tuple_db(const std::string& area)
{
    return db(area) + "/tuple.db";
}

std::string project_file(const std::string& area)
{
    return area + "/.prj";
}

std::string compile_option(const std::string& area)
{
    return area + "/CompileOption.ini";
}

std::string linked_libraries(const std::string& area)
{
    return area + "/libraries.txt";
}

std::string stub_state(const std::string& area)
{
    return area + "/stub.state";
}

std::string agent_config(const std::string& area, const std::string& module)
{
    return area + "/" + module + ".ini";
}

std::string stub(const std::string& area, const std::string& module, const std::string& extension)
{
    return area + "/obj/" STUB_PREFIX + module + extension;
}

} // namespace places
