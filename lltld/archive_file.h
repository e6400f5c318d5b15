// The members of a static library, as GNU ar writes it; see ar(5).
#pragma once

#include <string_view>
#include <vector>

/// A member. In a thin archive it is a file of its own, and the name is that file's path, relative
/// to the archive's directory.
struct ArchiveMember {
    std::string_view name;
    std::string_view content; ///< empty in a thin archive
};

/// What an archive holds. The texts are parts of the bytes that were read.
struct ArchiveFile {
    bool is_thin = false;
    std::string_view symbols; ///< names that the members define, each ended by a NUL
    std::vector<ArchiveMember> members;
};

/// How an archive and a thin archive begin, to the end of the line.
inline constexpr std::string_view ARCHIVE_MAGIC = "!<arch>\n";
inline constexpr std::string_view THIN_ARCHIVE_MAGIC = "!<thin>\n";

/// True when the bytes, of which only the first eight matter, are those of an archive.
bool is_archive(std::string_view bytes);

/// Reads the bytes of an archive; empty for bytes that are none. Members that are cut off or make
/// no sense are left out.
ArchiveFile read_archive_file(std::string_view bytes);
