// The suffixes are those of GCC and clang.
#include "toolset/common/source_name.h"

#include "commonfunc/path_name.h"
#include "commonfunc/text.h"

#include <cstddef>

std::string suffix_of(const std::string& path)
{
    const std::string name = base_name(path);
    const std::size_t dot = name.rfind('.');
    return dot == name.npos ? "" : name.substr(dot + 1);
}

bool names_source(const std::string& path)
{
    return is_one_of(suffix_of(path),
                     {"c", "i", "ii", "cc", "cp", "cxx", "cpp", "CPP", "c++", "C"});
}
