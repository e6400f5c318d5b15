// What a stub needs to compile is asked before an archive step (explain) and after it (doctor).
#include "lltcov/common/coverage_names.h"

#include "commonfunc/file_io.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <vector>

std::string module_of_archive(const std::string& path)
{
    const std::string name = base_name(path);
    std::string module = name.substr(0, name.find('.'));
    std::replace(module.begin(), module.end(), '-', '_');
    return module;
}

bool fits_identifier(const std::string& name)
{
    return std::all_of(name.begin(), name.end(),
                       [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
}

bool declares_port(const std::string& command)
{
    constexpr char PORT[] = "g_TUSKSockBindPort";
    if (command.find(PORT) != command.npos) {
        return true;
    }
    std::vector<std::string> words;
    strsplit_v(command.c_str(), ' ', words);
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        std::string header;
        if (words[i] == "-include" && read_whole_file(words[i + 1], header) == Reading::done &&
            header.find(PORT) != header.npos) {
            return true;
        }
    }
    return false;
}
