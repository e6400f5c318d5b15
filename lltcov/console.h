// What is said on standard error, and tables on standard output.
#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <vector>

/// What was found wrong while data were gathered, said when they are complete.
class Findings
{
public:
    /// Adds a line that says what, where and what to do. Of each kind only the first few lines are
    /// printed; the kind names the others ("stale sources"). A line that is there already counts
    /// once.
    void add(const std::string& kind, const std::string& line);

    /// Prints the lines on standard error.
    void print() const;

    bool empty() const { return kinds_.empty(); }

    /// All lines of a kind, for tests.
    std::vector<std::string> of(const std::string& kind) const;

private:
    std::map<std::string, std::vector<std::string>> kinds_;
};

/// Prints "lltcov: ", the line and a line end on standard error; control characters become blanks.
void say(const std::string& line);

/// A line on a terminal at standard error that says how far long work is; nothing elsewhere.
class Progress
{
public:
    Progress(std::string what, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One more is done.
    void step();

private:
    std::string what_;
    std::size_t total_;
    std::size_t done_ = 0;
    double next_ = 0; ///< second of the clock at which the line is drawn again
    bool is_drawn_ = false;
};
