// Files read whole.
#pragma once

#include "commonfunc/descriptor.h"   // IWYU pragma: export
#include "commonfunc/file_replace.h" // IWYU pragma: export

#include <cstddef>
#include <functional>
#include <string>

/// How the reading of a whole file ended.
enum class Reading { done, missing, not_opened, empty, no_memory, failed };

/// Reads the file whole into `content`; anything but `done` leaves it empty. What is no regular
/// file, and a file that shrinks meanwhile, has failed. `errno` tells why it was not read; it is 0
/// when no system call failed.
Reading read_whole_file(const std::string& path, std::string& content);

/// Gives memory for `size` bytes; null when there is none.
using RoomFor = std::function<char*(std::size_t size)>;

/// The same into the memory that `room` gives; it is called at most once, and not for an empty
/// file.
Reading read_file_into(const std::string& path, const RoomFor& room);

/// The reason that `errno` gives after such a reading, as text.
const char* why_not_read();

/// True for the errors that say that there can be no such file; after others there may be one.
bool means_absent(int error);

/// Takes a piece of a file; false when it wants no more.
using TakePiece = std::function<bool(const char* piece, std::size_t size)>;

/// The same for a file of any size in bounded memory: its bytes are given in pieces of at most
/// `piece_size`, in their order.
Reading read_in_pieces(const std::string& path, const TakePiece& take,
                       std::size_t piece_size = 65536);
