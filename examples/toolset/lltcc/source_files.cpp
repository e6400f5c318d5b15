// A relative path counts from the directory that the compiler recorded as file 0. Sources are read
// only where the assembly text leaves a question open, and once.
#include "source_files.h"

#include "commonfunc/Caddis_func.h"

#include <algorithm>
#include <cctype>

namespace
{

std::string joined(const std::string& directory, const std::string& name)
{
    return directory.empty() || (!name.empty() && name[0] == '/') ? name : directory + "/" + name;
}

bool is_word(char c)
{
    return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0;
}

/// A function's parameters take up fewer lines than this.
constexpr int NAME_LINES = 40;

} // namespace

void SourceFiles::add(int number, const std::string& directory, const std::string& name)
{
    files_[number].directory = directory;
    files_[number].name = name;
}

const std::string& SourceFiles::path(int number)
{
    static const std::string none;
    const auto file = files_.find(number);
    if (file == files_.end()) {
        return none;
    }
    if (file->second.path.empty()) {
        file->second.path = resolve(file->second);
    }
    return file->second.path;
}

std::string SourceFiles::resolve(const File& file) const
{
    const auto compile = files_.find(0);
    std::string path = joined(file.directory, file.name);
    path = joined(compile != files_.end() ? compile->second.directory : "", path);
    for (auto map = maps_.rbegin(); map != maps_.rend(); ++map) {
        const auto& [real, recorded] = *map;
        const std::string candidate = real + path.substr(std::min(recorded.size(), path.size()));
        if (path.compare(0, recorded.size(), recorded) == 0 &&
            QMRFileExists(candidate.c_str()) != 0) {
            path = candidate;
            break;
        }
    }
    return QMRFileExists(path.c_str()) != 0 ? absolute_path(path) : path;
}

SourceFiles::File* SourceFiles::readable(int number)
{
    const std::string& name = path(number);
    if (name.empty()) {
        return nullptr;
    }
    File& file = files_[number];
    if (!file.is_read) {
        file.is_read = true;
        read_whole_file(name, file.text);
        file.lines.push_back(0);
        for (std::size_t at = file.text.find('\n'); at != file.text.npos;
             at = file.text.find('\n', at + 1)) {
            file.lines.push_back(at + 1);
        }
    }
    return &file;
}

char SourceFiles::character(int number, int line, int column)
{
    const File* const file = readable(number);
    if (file == nullptr || line < 1 || column < 1 ||
        static_cast<std::size_t>(line) > file->lines.size()) {
        return '\0';
    }
    const std::size_t at =
        file->lines[static_cast<std::size_t>(line) - 1] + static_cast<std::size_t>(column) - 1;
    return at < file->text.size() ? file->text[at] : '\0';
}

int SourceFiles::line_of_name(int number, int line, const std::string& name)
{
    const File* const file = name.empty() ? nullptr : readable(number);
    for (int i = line; file != nullptr && i > 0 && i > line - NAME_LINES; --i) {
        const auto index = static_cast<std::size_t>(i) - 1;
        if (index >= file->lines.size()) {
            return 0;
        }
        const std::string text = file->text.substr(
            file->lines[index], file->text.find('\n', file->lines[index]) - file->lines[index]);
        for (std::size_t at = text.find(name); at != text.npos; at = text.find(name, at + 1)) {
            const std::size_t end = at + name.size();
            if ((at == 0 || !is_word(text[at - 1])) &&
                (end == text.size() || !is_word(text[end]))) {
                return i;
            }
        }
    }
    return 0;
}
