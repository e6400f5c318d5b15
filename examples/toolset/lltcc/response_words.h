// Response files: words of a command kept in a file that the command names as @file.
#pragma once

#include "examples/toolset/common/process.h"

/// The words with those of the files in the place of their names; a file that cannot be read stays
/// a word.
Words with_response_words(const Words& words);
