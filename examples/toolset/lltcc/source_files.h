// The sources behind the `.file` directives of an assembly text.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

/// Pairs of a real path prefix and the one that the compiler was told to record instead.
using PathMaps = std::vector<std::pair<std::string, std::string>>;

/// The files by their numbers; read when something of their text is asked for.
class SourceFiles
{
public:
    /// The directives may hold recorded prefixes of these maps.
    explicit SourceFiles(PathMaps maps) : maps_(std::move(maps)) {}

    /// Notes a directive; number 0 is the source itself, with the directory of the compile.
    void add(int number, const std::string& directory, const std::string& name);

    /// The absolute path; empty for a number without a directive.
    const std::string& path(int number);

    /// The character of the source text; NUL where there is none. Lines and columns count from 1.
    char character(int number, int line, int column);

    /// The last line, not behind `line`, that holds the name as a word; 0 when none near it does.
    int line_of_name(int number, int line, const std::string& name);

private:
    struct File {
        std::string directory;
        std::string name;
        std::string path; ///< empty until it was looked up
        bool is_read = false;
        std::string text;
        std::vector<std::size_t> lines; ///< where each begins
    };

    std::string resolve(const File& file) const;

    /// The file with its text read; null for a number without a directive.
    File* readable(int number);

    PathMaps maps_;
    std::map<int, File> files_;
};
