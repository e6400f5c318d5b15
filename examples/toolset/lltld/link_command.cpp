// Only what decides about coverage is understood: inputs, output, and the options that change what
// a file name means. Everything else goes to the tool as it is.
#include "examples/toolset/lltld/link_command.h"

#include "commonfunc/Caddis_func.h"
#include "commonfunc/response_file.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <sys/stat.h>

namespace
{

/// Response files may name response files; a ring of them ends here.
constexpr int MAX_DEPTH = 16;

/// A word as the tool sees it, and the word of the command that it stands in.
struct Argument {
    std::string text;
    std::size_t position;
    bool is_word;    ///< the word is the text
    bool for_linker; ///< handed on by a compiler driver: "-E" is another option there
};

using Arguments = std::vector<Argument>;

bool is_one_of(const std::string& text, std::initializer_list<const char*> list)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

bool begins_with(const std::string& text, const char* start)
{
    return text.compare(0, std::strlen(start), start) == 0;
}

bool ends_with(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// "ld", "ld.gold", "x86_64-linux-gnu-ld", "ld.lld-14", "mold".
bool names_linker(const std::string& tool)
{
    const std::string name = base_name(tool);
    return begins_with(name, "ld.") || ends_with(name, "-ld") || name.find("-ld.") != name.npos ||
           is_one_of(name, {"ld", "lld", "gold", "mold"});
}

bool is_source(const std::string& path)
{
    const std::size_t dot = base_name(path).rfind('.');
    return dot != std::string::npos &&
           is_one_of(base_name(path).substr(dot),
                     {".c", ".C", ".cc", ".cp", ".cpp", ".cxx", ".c++", ".CPP"}) &&
           QMRFileExists(path.c_str()) != 0;
}

void expand(const std::string& word, std::size_t position, int depth, Arguments& out)
{
    std::string text;
    if (word.size() > 1 && word[0] == '@' && depth < MAX_DEPTH &&
        read_whole_file(word.substr(1), text) == Reading::done) {
        for (const std::string& inner : words_of(text)) {
            expand(inner, position, depth + 1, out);
        }
    } else if (begins_with(word, "-Wl,")) {
        std::vector<std::string> parts;
        strsplit_v(word.c_str() + 4, ',', parts);
        for (const std::string& part : parts) {
            out.push_back({part, position, false, true});
        }
    } else {
        out.push_back({word, position, depth == 0, false});
    }
}

/// Walks over the arguments once and fills the command.
class Reader
{
public:
    explicit Reader(LinkCommand& link) : m_link(link) {}

    void read(const Arguments& arguments)
    {
        for (m_at = 0; m_at < arguments.size(); ++m_at) {
            read_argument(arguments);
        }
        for (const Argument& library : m_libraries) {
            add_library(library);
        }
    }

private:
    void read_argument(const Arguments& arguments)
    {
        const Argument& argument = arguments[m_at];
        const std::string& text = argument.text;
        const std::string value = m_at + 1 < arguments.size() ? arguments[m_at + 1].text : "";
        if (text.empty() || text[0] != '-') {
            add_file(argument);
        } else if (text == "-Xlinker") {
            // Its value is read next, as the linker's own word.
            m_behind_xlinker = argument.position;
            m_link.link_only.push_back(argument.position);
        } else if (text == "-o" || text == "--output") {
            m_link.output = value;
            skip_value(argument);
        } else if (begins_with(text, "-o") && !m_link.is_linker) {
            m_link.output = text.substr(2);
            m_link.link_only.push_back(argument.position);
        } else if (text == "-L" || text == "-l") {
            note_library(text, value, argument);
            skip_value(argument);
        } else if (begins_with(text, "-L") || begins_with(text, "-l")) {
            note_library(text.substr(0, 2), text.substr(2), argument);
            m_link.link_only.push_back(argument.position);
        } else if (is_one_of(text, {"-u", "-T", "-z", "-Map", "-h", "-soname", "-rpath"})) {
            skip_value(argument);
        } else if (is_one_of(text, {"-x", "-include", "-isystem", "-iquote", "-idirafter",
                                    "-imacros", "-I", "-D", "-U", "--param", "-target"})) {
            m_link.leaves_side_files = m_link.leaves_side_files || text == "-x";
            ++m_at;
        } else {
            read_flag(text, argument.for_linker || m_link.is_linker || follows_xlinker(argument));
        }
    }

    bool follows_xlinker(const Argument& argument) const
    {
        return m_behind_xlinker + 1 == argument.position;
    }

    void read_flag(const std::string& text, bool for_linker)
    {
        if (is_one_of(text, {"-r", "--relocatable", "-Ur"}) || (text == "-i" && for_linker)) {
            m_link.is_relocatable = true;
        } else if (for_linker) {
            return;
        } else if (is_one_of(text, {"-c", "-S", "-E", "-M", "-MM", "-fsyntax-only", "-###"})) {
            m_link.links = false;
        } else if (begins_with(text, "-M") || begins_with(text, "-save-temps") ||
                   begins_with(text, "-dump") || begins_with(text, "-fdump") ||
                   begins_with(text, "--coverage") || begins_with(text, "-gsplit-dwarf")) {
            m_link.leaves_side_files = true;
        }
    }

    void skip_value(const Argument& argument)
    {
        m_link.link_only.push_back(argument.position);
        m_link.link_only.push_back(argument.position + (argument.is_word ? 1 : 0));
        ++m_at;
    }

    void note_library(const std::string& option, const std::string& value, const Argument& argument)
    {
        if (option == "-L") {
            m_directories.push_back(value);
        } else {
            m_libraries.push_back({value, argument.position, false, false});
        }
    }

    void add_file(const Argument& argument)
    {
        LinkInput input{argument.text, argument.position, argument.is_word};
        if (follows_xlinker(argument)) {
            input.position = m_behind_xlinker;
            input.is_word = false;
            m_link.link_only.push_back(argument.position);
        }
        const FileKind kind = kind_of(input.path);
        if (kind == FileKind::object) {
            m_link.objects.push_back(input);
        } else if (kind == FileKind::archive) {
            m_link.archives.push_back(input);
        } else if (!m_link.is_linker && is_source(input.path)) {
            m_link.sources.push_back(input);
            return;
        } else {
            return;
        }
        m_link.link_only.push_back(argument.position);
    }

    /// The static library that "-l" may mean; libraries of the system are not looked for.
    void add_library(const Argument& library)
    {
        const std::string& name = library.text;
        const std::string file = name[0] == ':' ? name.substr(1) : "lib" + name + ".a";
        std::vector<std::string> directories = m_directories;
        strsplit_v(env_text("LIBRARY_PATH").c_str(), ':', directories);
        for (const std::string& directory : directories) {
            const std::string path = directory + "/" + file;
            if (!directory.empty() && kind_of(path) == FileKind::archive) {
                m_link.archives.push_back({path, library.position, false});
                return;
            }
        }
    }

    LinkCommand& m_link;
    std::size_t m_at = 0;
    std::size_t m_behind_xlinker = static_cast<std::size_t>(-2);
    std::vector<std::string> m_directories;
    Arguments m_libraries;
};

} // namespace

FileKind kind_of(const std::string& path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return FileKind::missing;
    }
    std::FILE* const file = std::fopen(path.c_str(), "rbe");
    unsigned char start[18] = {};
    const std::size_t length = file != nullptr ? std::fread(start, 1, sizeof start, file) : 0;
    if (file != nullptr) {
        std::fclose(file);
    }
    if (std::memcmp(start, "!<arch>\n", 8) == 0 || std::memcmp(start, "!<thin>\n", 8) == 0) {
        return FileKind::archive;
    }
    // The type is 1 for a relocatable object, in the byte order that byte 5 names.
    const bool is_elf_object = length == sizeof start &&
                               std::memcmp(start,
                                           "\x7f"
                                           "ELF",
                                           4) == 0 &&
                               start[start[5] == 2 ? 17 : 16] == 1 &&
                               start[start[5] == 2 ? 16 : 17] == 0;
    const bool is_bitcode = std::memcmp(start, "BC\xC0\xDE", 4) == 0;
    return is_elf_object || is_bitcode ? FileKind::object : FileKind::other;
}

LinkCommand read_link_command(std::vector<std::string> words)
{
    LinkCommand link;
    link.words = std::move(words);
    link.is_linker = names_linker(link.words[0]);
    Arguments arguments;
    for (std::size_t i = 1; i < link.words.size(); ++i) {
        expand(link.words[i], i, 0, arguments);
    }
    Reader(link).read(arguments);
    // A "-Wl," word means nothing to a compilation either.
    for (std::size_t i = 1; i < link.words.size(); ++i) {
        if (begins_with(link.words[i], "-Wl,")) {
            link.link_only.push_back(i);
        }
    }
    return link;
}
