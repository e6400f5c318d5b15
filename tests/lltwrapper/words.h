// An argument vector from the text of a command.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <wordexp.h>

/// Calls the operation with the words that a shell makes of the command.
template <class Operation> void with_words(const std::string& command, Operation operation)
{
    wordexp_t words;
    ASSERT_EQ(::wordexp(command.c_str(), &words, 0), 0);
    operation(static_cast<int>(words.we_wordc), words.we_wordv);
    ::wordfree(&words);
}
