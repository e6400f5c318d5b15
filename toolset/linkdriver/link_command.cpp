// Only what decides about coverage is understood: inputs, output, and the options that change what
// a file name means. Everything else goes to the tool as it is.
#include "toolset/linkdriver/link_command.h"

#include "commonfunc/env.h"
#include "commonfunc/file_ops.h"
#include "commonfunc/path_name.h"
#include "commonfunc/response_file.h"
#include "commonfunc/text.h"
#include "toolset/common/compiler_options.h"
#include "toolset/common/source_name.h"
#include "toolset/linkdriver/link_file.h"

#include <initializer_list>
#include <utility>

namespace
{

/// A word as the tool sees it, and the word of the command that it stands in.
struct Argument {
    std::string text;
    std::size_t position;
    bool is_word;    ///< the word is the text
    bool for_linker; ///< handed on by a compiler: "-E" is another option there
};

using Arguments = std::vector<Argument>;

/// What is looked for once all directories are known: a library, or a file of a linker script.
struct Wanted {
    std::string name; ///< what follows "-l", or a path
    std::size_t position;
    bool is_static; ///< no shared library will do
    bool is_path;
};

/// Scripts may name scripts; a ring of them ends here.
constexpr std::size_t MAX_WANTED = 10000;

/// "ld", "ld.gold", "x86_64-linux-gnu-ld", "ld.lld-14", "mold".
bool names_linker(const std::string& tool)
{
    const std::string name = base_name(tool);
    return begins_with(name, "ld.") || ends_with(name, "-ld") || name.find("-ld.") != name.npos ||
           is_one_of(name, {"ld", "lld", "gold", "mold"});
}

Arguments arguments_of(const std::vector<std::string>& command)
{
    Arguments arguments;
    for (std::size_t i = 1; i < command.size(); ++i) {
        for (const std::string& word : with_response_files({command[i]})) {
            if (!begins_with(word, "-Wl,")) {
                arguments.push_back({word, i, word == command[i], false});
                continue;
            }
            std::vector<std::string> parts;
            strsplit_v(word.c_str() + 4, ',', parts);
            for (const std::string& part : parts) {
                arguments.push_back({part, i, false, true});
            }
        }
    }
    return arguments;
}

/// Walks over the arguments once and fills the command.
class Reader
{
public:
    explicit Reader(LinkCommand& link) : link_(link) {}

    void read(const Arguments& arguments)
    {
        for (at_ = 0; at_ < arguments.size(); ++at_) {
            read_argument(arguments);
        }
        link_.has_c_library = names_c_library_ || !(has_no_default_ || link_.is_linker);
        if (link_.output.empty()) {
            link_.output = "a.out";
            link_.leaves_side_files = link_.leaves_side_files || link_.writes_dependencies;
        }
        strsplit_v(env_text("LIBRARY_PATH").c_str(), ':', directories_);
        directories_.emplace_back("/usr/local/lib"); // where `make install` puts libraries
        for (std::size_t i = 0; i < wanted_.size() && i < MAX_WANTED; ++i) {
            find(Wanted(wanted_[i])); // a copy: a script adds more
        }
    }

private:
    void read_argument(const Arguments& arguments)
    {
        const Argument& argument = arguments[at_];
        const std::string& text = argument.text;
        const std::string value = at_ + 1 < arguments.size() ? arguments[at_ + 1].text : "";
        if (text.empty() || text[0] != '-') {
            add_file(argument);
        } else if (text == "-Xlinker") {
            // Its value is read next, as the linker's own word.
            after_xlinker_ = argument.position;
            link_.link_only.push_back(argument.position);
        } else if (text == "-o" || text == "--output") {
            link_.output = value;
            skip_value(argument);
        } else if (begins_with(text, "-o") && !link_.is_linker) {
            link_.output = text.substr(2);
            link_.link_only.push_back(argument.position);
        } else if (text == "-L" || text == "-l") {
            note_library(text, value, argument);
            skip_value(argument);
        } else if (begins_with(text, "-L") || begins_with(text, "-l")) {
            note_library(text.substr(0, 2), text.substr(2), argument);
            link_.link_only.push_back(argument.position);
        } else if (is_one_of(text, {"-u", "-T", "-z", "-Map", "-h", "-soname", "-rpath"})) {
            if (text == "-T") {
                wanted_.push_back({value, argument.position, false, true});
            }
            skip_value(argument);
        } else if (is_one_of(text, {"-MF", "-MT", "-MQ"})) {
            (text == "-MF" ? link_.names_dependency_file : link_.names_dependent) = true;
            ++at_;
        } else if (!link_.is_linker && !argument.for_linker && takes_value(text)) {
            link_.leaves_side_files = link_.leaves_side_files || text == "-x";
            ++at_;
        } else {
            read_flag(text, argument.for_linker || link_.is_linker || follows_xlinker(argument));
        }
    }

    bool follows_xlinker(const Argument& argument) const
    {
        return after_xlinker_ + 1 == argument.position;
    }

    void read_flag(const std::string& text, bool for_linker)
    {
        if (is_one_of(text, {"-r", "--relocatable", "-Ur"}) || (text == "-i" && for_linker)) {
            link_.is_relocatable = true;
        } else if (!for_linker && is_one_of(text, {"-static", "-static-pie"})) {
            is_all_static_ = true;
        } else if (is_one_of(text, {"-static", "-Bstatic", "-dn", "-non_shared"})) {
            is_static_ = true;
        } else if (is_one_of(text, {"-Bdynamic", "-dy", "-call_shared", "--pop-state"})) {
            is_static_ = false;
        } else if (is_one_of(text, {"-nostdlib", "-nodefaultlibs", "-nolibc"})) {
            has_no_default_ = true;
        } else if (for_linker) {
            return;
        } else if (is_one_of(text, {"-c", "-S", "-E", "-M", "-MM", "-fsyntax-only", "-###"})) {
            link_.links = false;
        } else if (is_one_of(text, {"-MD", "-MMD"})) {
            link_.writes_dependencies = true;
        } else if (begins_with(text, "-save-temps") || begins_with(text, "-dump") ||
                   begins_with(text, "-fdump") || begins_with(text, "--coverage") ||
                   begins_with(text, "-gsplit-dwarf")) {
            link_.leaves_side_files = true;
        }
    }

    void skip_value(const Argument& argument)
    {
        link_.link_only.push_back(argument.position);
        link_.link_only.push_back(argument.position + (argument.is_word ? 1 : 0));
        ++at_;
    }

    void note_library(const std::string& option, const std::string& value, const Argument& argument)
    {
        if (option == "-L") {
            directories_.push_back(value);
        } else {
            names_c_library_ = names_c_library_ || value == "c";
            wanted_.push_back({value, argument.position, is_static_, false});
        }
    }

    void add_file(const Argument& argument)
    {
        const bool is_c_library =
            is_one_of(base_name(argument.text), {"libc.a", "libc.so", "libc.so.6"});
        names_c_library_ = names_c_library_ || is_c_library;
        LinkInput input{argument.text, argument.position, argument.is_word};
        if (follows_xlinker(argument)) {
            input.position = after_xlinker_;
            input.is_word = false;
            link_.link_only.push_back(argument.position);
        }
        if (!link_.is_linker && names_source(input.path) &&
            QMRFileExists(input.path.c_str()) != 0) {
            link_.sources.push_back(input);
        } else if (add_input(input)) {
            link_.link_only.push_back(argument.position);
        }
    }

    /// False when the path names nothing that a linker reads.
    bool add_input(const LinkInput& input)
    {
        std::string text;
        switch (kind_of(input.path)) {
        case FileKind::object:
            link_.objects.push_back(input);
            return true;
        case FileKind::archive:
            link_.archives.push_back(input);
            return true;
        case FileKind::text:
            read_input(input.path, text);
            for (const std::string& word : inputs_of_script(text)) {
                const bool is_path = !begins_with(word, "-l");
                wanted_.push_back(
                    {word.substr(is_path ? 0 : 2), input.position, is_static_, is_path});
            }
            return true;
        case FileKind::image:
            return true;
        case FileKind::missing:
            break;
        }
        return false;
    }

    /// Libraries in the other directories of the system are not looked for.
    void find(const Wanted& wanted)
    {
        if (wanted.name.empty()) {
            return;
        }
        if (!wanted.is_path) {
            const bool is_static = wanted.is_static || is_all_static_;
            add_input({find_library(wanted.name, is_static, directories_), wanted.position, false});
        } else if (!add_input({wanted.name, wanted.position, false})) {
            add_input(
                {find_library(":" + wanted.name, false, directories_), wanted.position, false});
        }
    }

    LinkCommand& link_;
    std::size_t at_ = 0;
    std::size_t after_xlinker_ = static_cast<std::size_t>(-2);
    bool has_no_default_ = false; ///< no library is linked that is not named
    bool names_c_library_ = false;
    bool is_all_static_ = false; ///< "-static" of a compiler, wherever it stands
    bool is_static_ = false;     ///< "-Bstatic", until the next "-Bdynamic"
    std::vector<std::string> directories_;
    std::vector<Wanted> wanted_;
};

} // namespace

LinkCommand read_link_command(std::vector<std::string> words)
{
    LinkCommand link;
    link.words = std::move(words);
    link.is_linker = names_linker(link.words[0]);
    Reader(link).read(arguments_of(link.words));
    // A "-Wl," word means nothing to a compilation either.
    for (std::size_t i = 1; i < link.words.size(); ++i) {
        if (begins_with(link.words[i], "-Wl,")) {
            link.link_only.push_back(i);
        }
    }
    return link;
}
