// A prefix that the compiler replaced is put back only where that leads to a file.
#include "lltcov/report/recorded_path.h"

#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace
{

/// The path with its recorded prefix replaced by the real one; empty when that is no file. Of
/// several maps the compiler follows the last one.
std::string real_path(const Record& record, const std::string& path)
{
    for (auto map = record.path_maps.rbegin(); map != record.path_maps.rend(); ++map) {
        const auto& [real, recorded] = *map;
        if (begins_with(path, recorded)) {
            std::string candidate = real + path.substr(recorded.size());
            if (QMRFileExists(candidate.c_str()) != 0) {
                return candidate;
            }
        }
    }
    return "";
}

} // namespace

std::string source_path(const Record& record, const std::string& directory, const std::string& name)
{
    const bool is_absolute = !name.empty() && name[0] == '/';
    const std::string joined = is_absolute || directory.empty() ? name : directory + "/" + name;
    std::string real = real_path(record, joined);
    real = real.empty() && !is_absolute ? real_path(record, name) : real;
    real = real.empty() ? joined : real;
    return QMRFileExists(real.c_str()) != 0
               ? absolute_path(real)
               : std::filesystem::path(real).lexically_normal().string();
}
