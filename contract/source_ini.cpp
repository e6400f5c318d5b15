// Read by the rules of all INI files of a project.
#include "contract/source_ini.h"

#include "commonfunc/ini_profile.h"

namespace
{

constexpr char SECTION[] = "StubFiles";
constexpr char SOURCE[] = "StubFilePath1";
constexpr char OBJECT[] = "ObjFilePath";

} // namespace

std::string source_ini(const std::string& source, const std::string& object)
{
    return std::string("[") + SECTION + "]\n" + SOURCE + "=" + source + "\n" + OBJECT + "=" +
           object + "\n";
}

bool read_source_ini(const char* path, char* source, char* object, int size)
{
    const std::string text = profile_text(path);
    if (!profile_value(text, SECTION, SOURCE, source, size)) {
        return false;
    }
    profile_value(text, SECTION, OBJECT, object, size);
    return true;
}
