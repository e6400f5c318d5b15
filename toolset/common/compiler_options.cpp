// Words are looked up in lists; the options are those of GCC and clang.
#include "toolset/common/compiler_options.h"

#include "commonfunc/text.h"

#include <algorithm>
#include <string_view>

namespace
{

/// Whether the word is one of the list, whose words have a blank on each side.
bool is_in(std::string_view list, const std::string& word)
{
    return !word.empty() && list.find(" " + word + " ") != list.npos;
}

/// Options whose value is the next word.
constexpr std::string_view VALUED =
    " -o -x -D -U -I -L -l -include -imacros -isystem -iquote -idirafter -iprefix -iwithprefix "
    "-iwithprefixbefore -isysroot -MF -MT -MQ -MJ -Xassembler -Xpreprocessor -Xlinker -Xclang "
    "-mllvm -target -T -u -z -A -B -aux-info --param -dumpbase -dumpdir -dumpbase-ext -arch "
    "-specs -wrapper --sysroot -imultilib -include-pch -ivfsoverlay --include ";

/// Of these the ones that matter to a stub.
constexpr std::string_view VALUED_FOR_STUB = " -target -isysroot --sysroot -idirafter -arch -B ";

/// Beginnings of options that count or use counts themselves.
constexpr std::string_view PROFILE_OPTIONS =
    "-fprofile-use -fprofile-generate -fprofile-arcs -ftest-coverage --coverage -coverage "
    "-fauto-profile -fbranch-probabilities -fcs-profile -fprofile-values -fprofile-instr "
    "-fcoverage-mapping -fcoverage-mcdc";

/// Beginnings of options that a stub must be compiled with too: target, code generation, debug
/// information. Warnings, language standard and include paths are the sources' own affair.
constexpr std::string_view FOR_STUB = "-m -f -O -g --target= --sysroot= -B -pthread";

/// Of these the ones that a stub must not have.
constexpr std::string_view NOT_FOR_STUB =
    "-fsanitize -fprofile -ftest-coverage -fcoverage -fdump -fpreprocessed -fdirectives -fmodule "
    "-fplugin -fsyntax -finput -fno-rtti -fvisibility-inlines -fpermissive -fdiagnostics "
    "-fstack-usage -fcallgraph -flto";

/// Whether the word begins with one of the list, whose words have blanks between them.
bool begins_with_one_of(std::string_view list, std::string_view word)
{
    while (!list.empty()) {
        const std::string_view beginning = list.substr(0, list.find(' '));
        if (begins_with(word, beginning)) {
            return true;
        }
        list.remove_prefix(std::min(beginning.size() + 1, list.size()));
    }
    return false;
}

} // namespace

bool takes_value(const std::string& option)
{
    return is_in(VALUED, option);
}

bool matters_to_stub(const std::string& option)
{
    return is_in(VALUED_FOR_STUB, option) ||
           (begins_with_one_of(FOR_STUB, option) && !takes_value(option) &&
            !begins_with_one_of(NOT_FOR_STUB, option));
}

bool counts_itself(const std::string& option)
{
    return begins_with_one_of(PROFILE_OPTIONS, option);
}
