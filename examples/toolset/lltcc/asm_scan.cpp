// One pass over the lines. Labels and jumps bound regions. What stands between #APP and #NO_APP is
// the programmer's own text: it counts as instructions, whatever it does.
//
// A region's traces say which lines it has instructions of, and where the optimiser has left
// nothing of a statement but the mark of its beginning; which of them count is settled behind the
// pass. The mark of an empty statement (the `;` behind a block or a macro) says nothing.
#include "asm_scan.h"

#include "asm_settle.h"
#include "asm_syntax.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace
{

class Scanner
{
public:
    Scanner(AsmText& out, SourceFiles& files, bool has_marks)
        : m_out(out), m_files(files), m_has_marks(has_marks)
    {
    }

    /// The traces of the regions that were read.
    std::vector<std::vector<Trace>> read(std::string_view text)
    {
        for (std::size_t from = 0; from < text.size();) {
            const std::size_t end = std::min(text.find('\n', from), text.size());
            m_out.text.push_back(text.substr(from, end - from));
            from = end + 1;
            read_line(trimmed(m_out.text.back()));
        }
        return std::move(m_traces);
    }

private:
    void read_line(std::string_view line)
    {
        if (begins_with(line, "#APP") || begins_with(line, "//APP")) {
            m_inline = true;
        } else if (begins_with(line, "#NO_APP") || begins_with(line, "//NO_APP")) {
            m_inline = false;
        } else if (m_inline) {
            note_instruction();
        } else if (!line.empty() && line[0] != '#' && !begins_with(line, "//")) {
            const std::size_t colon = line.find(':');
            if (colon != line.npos && line.find_first_of(" \t\"") > colon) {
                read_label(line.substr(0, colon));
            } else if (line[0] == '.') {
                read_directive(line);
            } else {
                read_instruction(trimmed(line.substr(0, line.find('#'))));
            }
        }
    }

    void read_label(std::string_view label)
    {
        if (m_function_names.count(std::string(label)) != 0) {
            m_out.functions.push_back({std::string(label.substr(0, label.find('.'))), {0, 0}});
            open_region();
            if (label.find(".cold") == label.npos) {
                m_out.regions.back().probe = Region::Probe::entry;
            }
        } else if (is_jump_target(label) && !m_out.functions.empty()) {
            open_region();
            m_at_target = true;
        }
    }

    void read_directive(std::string_view line)
    {
        if (begins_with(line, ".loc\t") || begins_with(line, ".loc ")) {
            read_location(line);
        } else if (begins_with(line, ".file")) {
            read_file(directive_words(line));
        } else if (begins_with(line, ".type")) {
            const auto word = directive_words(line);
            if (word.size() >= 3 && word[2].find("function") != std::string::npos) {
                m_function_names.insert(word[1]);
            }
        } else if (begins_with(line, ".intel_syntax")) {
            m_out.intel_syntax = true;
        }
    }

    void read_location(std::string_view line)
    {
        if (!m_out.functions.empty() && is_sanitizer_start(m_out.functions.back().symbol)) {
            return; // stands at the end of the file, whatever line that is
        }
        const auto word = directive_words(line);
        const Location location = location_of(word);
        // For code without a location the compiler repeats the last one when debug information
        // needs a view number there.
        const bool repeated = location == m_location && m_at_line == SourceLine{0, 0};
        m_at_copy = m_at_copy && location == m_location;
        m_location = location;
        const auto mark = std::find(word.begin(), word.end(), "is_stmt");
        if (mark != word.end() && mark + 1 != word.end()) {
            m_is_mark = *(mark + 1) == "1";
        }
        if (!repeated) {
            note_location(location);
        }
    }

    void note_location(const Location& location)
    {
        const auto [file, line, column, discriminator] = location;
        (void)discriminator;
        const char begin = m_files.character(file, line, column);
        m_at_line = {file, line};
        m_at_brace = begin == '}';
        if (!m_out.functions.empty() && m_out.functions.back().line.second == 0) {
            // C functions begin at their brace (for clang: in its line), maybe below the name.
            Function& function = m_out.functions.back();
            const int named =
                begin == '{' || column == 0
                    ? m_files.line_of_name(file, line, name_in_source(function.symbol))
                    : 0;
            m_at_line.second = named != 0 ? named : line;
            function.line = m_at_line;
        }
        if (m_has_marks && m_is_mark && line > 0 && begin != ';') {
            m_marks.push_back(trace(Trace::Kind::mark));
        }
    }

    void read_file(const std::vector<std::string>& word)
    {
        if (word.size() == 2) {
            m_out.main_name = word[1];
        } else if (word.size() > 2 && std::isdigit(static_cast<unsigned char>(word[1][0])) != 0) {
            const bool has_directory = word.size() >= 4 && word[3] != "md5";
            m_files.add(std::atoi(word[1].c_str()), has_directory ? word[2] : "",
                        has_directory ? word[3] : word[2]);
        }
    }

    void read_instruction(std::string_view line)
    {
        const std::size_t blank = std::min(line.find_first_of(" \t"), line.size());
        const std::string_view mnemonic = line.substr(0, blank);
        const std::string_view operand = trimmed(line.substr(blank));
        if (line.find(PROBE) != line.npos) {
            read_probe(probe_form(m_out.machine, mnemonic, operand));
            return;
        }
        if (m_at_target && mnemonic == "nop") {
            m_out.regions.back().probe = Region::Probe::nop;
        }
        const Flow flow = flow_of(m_out.machine, mnemonic);
        const bool tail_call = is_tail_call(m_out.machine, mnemonic, operand);
        m_at_copy = is_copy(m_out.machine, mnemonic, operand) ||
                    (m_at_copy && flow == Flow::end && !tail_call);
        if (m_at_copy && m_has_marks && !at_entry()) {
            note_copy();
        } else if (!is_landing_mark(mnemonic)) {
            note_instruction();
        }
        if (m_open && tail_call) {
            forget_braces();
        }
        if (m_open && may_not_return(m_out.machine, mnemonic, operand)) {
            open_region();
            m_out.regions.back().probe = Region::Probe::after;
        } else if (flow == Flow::branch) {
            open_region();
        } else if (flow == Flow::end) {
            m_open = false;
        }
    }

    /// In front of a tail call the stack is cleared at the function's closing brace, which the
    /// source has behind the call.
    void forget_braces()
    {
        std::vector<Trace>& traces = m_traces.back();
        traces.erase(std::remove_if(traces.begin(), traces.end(),
                                    [](const Trace& t) { return t.kind == Trace::Kind::brace; }),
                     traces.end());
    }

    void read_probe(Region::Probe form)
    {
        if (m_out.functions.empty()) {
            throw NotInstrumentable("a probe outside of any function");
        }
        if (!m_open || (m_out.regions.back().probe != Region::Probe::none && !at_entry())) {
            go_on(form); // the location in front of the probe is the new block's
        }
        note_instruction();
        m_out.regions.back().probe = form;
        m_out.regions.back().at = m_out.text.size() - 1;
        m_open = form == Region::Probe::call;
    }

    /// Begins a region behind the line just read. The compiler gives code a location of its own
    /// behind a label; code without one has none, not that of the code above. Behind a call it is
    /// what takes the result, a part of the call.
    void open_region()
    {
        if (m_open) {
            note_marks();
        }
        m_marks.clear();
        m_at_line = {0, 0};
        m_open = true;
        m_out.regions.emplace_back();
        m_out.regions.back().function = static_cast<int>(m_out.functions.size()) - 1;
        m_traces.emplace_back();
    }

    bool at_entry() const { return m_open && m_out.regions.back().probe == Region::Probe::entry; }

    /// Begins a region that is reached only from the code above, with its location.
    void go_on(Region::Probe form)
    {
        const SourceLine line = m_at_line;
        std::vector<Trace> marks;
        marks.swap(m_marks);
        open_region();
        m_at_line = line;
        m_marks.swap(marks);
        m_out.regions.back().probe = form;
    }

    void note_instruction()
    {
        note_copy();
        if (m_open && m_at_line.second > 0) {
            m_traces.back().push_back(trace(Trace::Kind::code));
        }
    }

    /// The optimiser copies a value (`return 0`, `i = 0`) to where several ways meet, with the
    /// location of one of them. A statement of its own has its mark besides.
    void note_copy()
    {
        m_at_target = false;
        if (m_open) {
            note_marks();
            note_place();
        }
    }

    void note_marks()
    {
        if (!m_marks.empty()) {
            note_place();
            m_traces.back().insert(m_traces.back().end(), m_marks.begin(), m_marks.end());
            m_marks.clear();
        }
    }

    void note_place()
    {
        if (m_out.regions.back().at == 0) {
            m_out.regions.back().at = m_out.text.size() - 1;
        }
    }

    Trace trace(Trace::Kind kind) const
    {
        return {m_at_line, m_at_brace ? Trace::Kind::brace : kind};
    }

    AsmText& m_out;
    SourceFiles& m_files;
    const bool m_has_marks; ///< the compiler marks beginnings of statements
    std::set<std::string> m_function_names;
    std::vector<std::vector<Trace>> m_traces; ///< of the regions
    std::vector<Trace> m_marks;               ///< since the last instruction
    Location m_location{};                    ///< as last written
    SourceLine m_at_line{0, 0};               ///< of the next instruction
    bool m_at_brace = false;
    bool m_is_mark = true;
    bool m_at_copy = false;   ///< only copies since the last location
    bool m_at_target = false; ///< no instruction since the label
    bool m_open = false;      ///< code that can run is being read
    bool m_inline = false;
};

} // namespace

AsmText scan_assembly(std::string_view text, SourceFiles& files, Marks marks)
{
    AsmText out;
    out.machine = machine_of(text);
    const std::string_view ident = text.substr(std::min(text.rfind("\t.ident\t"), text.size()));
    out.has_long_blocks = ident.substr(0, ident.find('\n')).find("clang") != ident.npos;
    const bool has_marks = text.find(" is_stmt 0") != text.npos;
    settle_lines(out, Scanner(out, files, has_marks).read(text), marks);
    return out;
}
