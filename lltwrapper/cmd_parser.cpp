// One walk over the arguments. Each argument is compared with the rows of a table from top to
// bottom; the first row that matches says what is appended to the command and how many arguments
// are used up. The words of the command are the user's own: they get exactly this treatment.
//
// Oddities that builds rely on: "-mshort-load-bytes" takes the following argument with it; "-c",
// "-S" and "-E" take the following argument as a value, so it is not looked at; only six
// characters are escaped, and in ordinary arguments only when they name an existing path.
#include "lltwrapper/cmd_parser.h"

#include "commonfunc/file_ops.h"
#include "commonfunc/message.h"
#include "commonfunc/path_name.h"
#include "commonfunc/text.h"
#include "contract/names.h"
#include "lltwrapper/step_plan.h"
#include "lltwrapper/word_size.h"
#include "lltwrapper/wrapper_state.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>
#include <vector>

namespace
{

/// The place of the walk in the argument vector.
struct Walk {
    const std::vector<std::string>& arguments;
    std::size_t at = 0;

    const char* argument() const { return arguments[at].c_str(); }

    /// The n-th argument after the current one; null when the command ends before it.
    const char* after(std::size_t n) const
    {
        return at + n < arguments.size() ? arguments[at + n].c_str() : nullptr;
    }

    void use(std::size_t count) { at += count; }

    /// Uses up the current argument and its value, or the argument alone when it stands last.
    const char* use_with_value()
    {
        const char* value = after(1);
        use(value != nullptr ? 2 : 1);
        return value;
    }
};

void append_word(const std::string& word)
{
    pOriginalCmd += word + " ";
}

/// Takes one of the wrapper's own options out of the command; its value, or null with a warning.
const char* take_own_option(Walk& walk)
{
    const char* option = walk.argument();
    const char* value = walk.use_with_value();
    if (value == nullptr) {
        warn("option '%s' stands last, without its value: it has no effect; add the value", option);
    }
    return value;
}

void drop_own_option(Walk& walk)
{
    take_own_option(walk);
}

void drop_project_path(Walk& walk)
{
    const char* next = walk.after(2);
    const bool named = next != nullptr && std::strcmp(next, NAME_OPTION) == 0;
    if (!named) {
        say("error \"projectname\". \r\n");
    }
    drop_own_option(walk);
    if (named) {
        drop_own_option(walk);
    }
}

void drop_with_next(Walk& walk)
{
    // Kept: treated as if it took a value, whatever follows.
    walk.use_with_value();
}

void drop_armv7_extension(Walk& walk)
{
    append_word("-Wa,-march=armv7-a");
    walk.use(1);
}

void keep_rpath_origin(Walk& walk)
{
    // Kept: the character at index 11, which is the "$" only when the argument begins with the
    // option; a "$ORIGIN" anywhere else stays bare.
    pOriginalCmd += std::string(walk.argument()).replace(11, 1, "\\$") + "  ";
    say("cmd:: %s\n", pOriginalCmd.c_str());
    std::fflush(stdout);
    walk.use(1);
}

void set_object_suffixes(Walk& walk)
{
    const char* value = take_own_option(walk);
    if (value == nullptr) {
        return;
    }
    strObjSuffix = value;
    std::vector<std::string> pieces;
    strsplit_v(value, '|', pieces);
    vtor_objtypes.insert(pieces.begin(), pieces.end());
}

void set_binary_suffix(Walk& walk)
{
    const char* value = take_own_option(walk);
    strBinSuffix = value != nullptr ? value : strBinSuffix;
}

void set_archiver(Walk& walk)
{
    const char* value = take_own_option(walk);
    strArTools = value != nullptr ? base_name(value) : strArTools;
}

void set_archive_suffix(Walk& walk)
{
    const char* value = take_own_option(walk);
    strArSuffix = value != nullptr ? value : strArSuffix;
}

void keep_linker_option(Walk& walk)
{
    append_word(walk.argument());
    if (const char* value = walk.use_with_value()) {
        // Kept: quoted, not escaped; `"`, `$` and backquotes in the value stay live.
        append_word("\"" + std::string(value) + "\"");
    }
}

void keep_with_value(Walk& walk)
{
    append_word(walk.argument());
    if (const char* value = walk.use_with_value()) {
        append_word(escape_for_shell(value));
    }
}

void keep_escaped(Walk& walk)
{
    append_word(escape_for_shell(walk.argument()));
    walk.use(1);
}

void keep_word_size(Walk& walk)
{
    append_word(walk.argument());
    TUSK_SetType_m32m64(walk.argument());
    walk.use(1);
}

void keep_other(Walk& walk)
{
    const char* argument = walk.argument();
    append_word(QMRFileExists(argument) != 0 ? escape_for_shell(argument) : argument);
    walk.use(1);
}

bool equals(std::string_view argument, std::string_view text)
{
    return argument == text;
}

struct Row {
    bool (*matches)(std::string_view argument, std::string_view text);
    const char* text;
    void (*apply)(Walk& walk);
    bool is_own = false; ///< an option of the wrapper's own, which takes a value
};

constexpr Row ROWS[] = {
    {equals, PROJECT_OPTION, drop_project_path, true},
    {equals, NAME_OPTION, drop_own_option, true},
    {equals, MODE_OPTION, drop_own_option, true},
    {equals_nocase, "-lltwrapper_envfile", drop_own_option, true},
    {equals, "-mshort-load-bytes", drop_with_next},
    {equals, "-Wa,-march=armv7-a+sec", drop_armv7_extension},
    {contains, "-Wl,-rpath,$ORIGIN", keep_rpath_origin},
    {equals, "-objsuffix", set_object_suffixes, true},
    {equals, "-binsuffix", set_binary_suffix, true},
    {equals, "-artool", set_archiver, true},
    {equals, "-arsuffix", set_archive_suffix, true},
    {equals, "-Xlinker", keep_linker_option},
    // Kept: these take the next argument as a value, whatever it is.
    {equals, "-D", keep_with_value},
    {equals, "-I", keep_with_value},
    {equals, "-o", keep_with_value},
    {equals, "-c", keep_with_value},
    {equals, "-S", keep_with_value},
    {equals, "-E", keep_with_value},
    {equals, "-L", keep_with_value},
    {equals, "-l", keep_with_value},
    {begins_with, "-D", keep_escaped},
    {begins_with, "-I", keep_escaped},
    {begins_with, "-L", keep_escaped},
    {begins_with, "-l", keep_escaped},
    {equals, "-m32", keep_word_size},
    {equals, "-m64", keep_word_size},
    {begins_with, "", keep_other}, // anything else
};

const Row& row_of(std::string_view argument)
{
    return *std::find_if(std::begin(ROWS), std::end(ROWS),
                         [&](const Row& row) { return row.matches(argument, row.text); });
}

} // namespace

bool is_own_option(const std::string& argument)
{
    return row_of(argument).is_own;
}

void rebuild_command(const std::vector<std::string>& arguments)
{
    Walk walk{arguments};
    while (walk.at < arguments.size()) {
        row_of(walk.argument()).apply(walk);
    }
}

void parser(int argc, char** argv)
{
    rebuild_command({argv + 1, argv + argc});
    checkstate(argc, argv);
}

std::string escape_for_shell(const std::string& text)
{
    // Kept: these six bytes only; makefiles pass on `$` and quotes on purpose.
    std::string out;
    for (const char c : text) {
        if (std::string_view("\" ()<>").find(c) != std::string_view::npos) {
            out += '\\';
        }
        out += c;
    }
    return out;
}

void StrReplace(const char* src, char* dst)
{
    const std::string escaped = escape_for_shell(src);
    std::memcpy(dst + std::strlen(dst), escaped.data(), escaped.size());
}
