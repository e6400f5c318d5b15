// What is said on standard error, and tables on standard output.
#pragma once

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

/// What was noticed while data were gathered, said when they are complete. Of each kind only the
/// first few lines are printed; the kind names the others ("damaged dumps"). Equal lines count
/// once.
class Findings
{
public:
    /// Adds a problem: a line that says what, where and what to do.
    void add(const std::string& kind, const std::string& line);

    /// Adds a line that is good to know but no problem.
    void note(const std::string& kind, const std::string& line);

    /// The lines to print.
    std::vector<std::string> lines() const;

    /// Prints them on standard error.
    void print() const;

    /// True when `add` was called; notes do not count.
    bool has_problems() const { return has_problems_; }

    /// The lines of a kind.
    const std::set<std::string>& of(const std::string& kind) { return kinds_[kind]; }

private:
    std::map<std::string, std::set<std::string>> kinds_;
    bool has_problems_ = false;
};

/// Flushes standard output. False, after a warning at the first time, when something could not be
/// written there.
bool finish_output();

/// A line that says how far long work is, where standard error is a terminal; nothing elsewhere.
class Progress
{
public:
    /// `what` is going on with each of `total` things: "reading dumps".
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
    double next_ = 0; ///< second of the clock at which the line is drawn again; 0: never
    bool is_drawn_ = false;
};

/// A table on standard output.
class Table
{
public:
    /// Columns by their titles. One that begins with ">" (which is not shown) is aligned to the
    /// right; where a column is called "%", its percentages have colours on a terminal, unless
    /// "NO_COLOR" is set and not empty.
    explicit Table(const std::vector<std::string>& titles);

    /// Adds a row; it has a cell for each column. Control characters are shown as "?".
    void add(std::vector<std::string> cells);

    /// Prints the table, its titles first.
    void print() const;

private:
    std::vector<bool> is_right_;
    std::vector<std::vector<std::string>> rows_; ///< the first one holds the titles
};
