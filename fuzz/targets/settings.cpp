// Small functions: a letter and what they read. "t": the custom type of counters, an option on each
// of two lines. "c": the clock, as digits, and the size of a buffer. "l": level, code and text of a
// line of the log. Else the policies of the environment, a line each.
#include "commonfunc/Caddis_func.h"
#include "fuzz/fuzz.h"
#include "lltld/prj_settings.h"
#include "lltld/stub_source.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/types.h>

namespace
{

std::time_t now; ///< what the clock shows

void check_custom_type(fuzz::Input& input)
{
    std::string options[2];
    for (std::string& option : options) {
        option = input.line().substr(0, 1047);
        std::replace_if(
            option.begin(), option.end(), [](char c) { return c == '\r' || c == '\xff'; },
            ' '); // both would end it
    }
    fuzz::write_file("InstCode.ini",
                     "[GccOption]\nGccOption=" + options[0] + "\nGccCOption=" + options[1] + "\n");
    g_lxprj->szCov_type[0] = '\0';
    g_lxprj->cov_type = 0;
    Caddis_LD_CovTypeIsCustom();
    const std::string& chosen = options[options[0].find("-hcov_type") == std::string::npos ? 1 : 0];
    const std::size_t at = chosen.find("-hcov_type");
    const bool is_there = !options[0].empty() && !options[1].empty() && at != std::string::npos;
    const std::string type =
        is_there ? (chosen + "            ")
                       .substr(at + 12, std::min<std::size_t>(
                                            259, chosen.size() - std::min(chosen.size(), at + 12)))
                 : "";
    fuzz::same("custom type", type.substr(0, type.find('"')), g_lxprj->szCov_type);
    fuzz::same("it is of longs",
               type.substr(0, type.find('"')).find("unsigned long") != std::string::npos,
               g_lxprj->cov_type);
}

void check_clock(fuzz::Input& input)
{
    now = std::strtoll(input.line().c_str(), nullptr, 10) %
          67768036191676800; // of any year in an int
    std::tm date = {};
    fuzz::holds("there is a date", ::gmtime_r(&now, &date) != nullptr);
    long digit = date.tm_year - 100L;
    while (digit >= 36) {
        digit /= 36;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%c%02d%02d%02d%02d%02d",
                  digit < 0 ? '0'
                            : "\0"
                              "123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[digit],
                  date.tm_mon + 1, date.tm_mday, date.tm_hour, date.tm_min, date.tm_sec);
    fuzz::Buffer id(12);
    TUSK_Build_GenerateBUID(id.data());
    fuzz::same("build id", std::string(text, 12), id.bytes());
    const std::size_t size = input.number(64) + 1;
    fuzz::Buffer time(size);
    QMRTimeFormatStr(time.data(), size, "%m%d%H%M%S");
    fuzz::same("time", size > 11 ? text + 1 : "", time.data());
}

void check_log(fuzz::Input& input)
{
    const auto level = static_cast<unsigned char>(input.byte());
    const auto code = static_cast<unsigned>(std::strtoul(input.line().c_str(), nullptr, 10));
    const std::string text = input.line();
    char tag[64];
    std::snprintf(tag, sizeof tag, "[TUSK-0x0B07%X%03X]: ", level % 16U, code % 4096U);
    HeldMessages held;
    TUSKLog(LOG_COMPONENT, LOG_MODULE, level, code, "%s\n", text.c_str());
    fuzz::same("line of the log", tag + text + "\n", held.output);
}

void check_policies(fuzz::Input& input)
{
    const HeldMessages quiet;
    int numbers[7];
    const char* const names[] = {"isOverlappedCompile", "TimerPolicy", "TimeInterval",
                                 "SignalPolicy",        "SignalNUM",   "qmr_coverage_stub_mold",
                                 "SupportSameName"};
    for (int i = 0; i < 7; ++i) {
        const std::string value = input.line().substr(0, 9);
        fuzz::set_environment(names[i], value);
        numbers[i] = std::atoi(value.c_str());
    }
    const std::string text = input.line().substr(0, 200);
    fuzz::set_environment("PlatformToken", "lltcovRootpath"); // names the variable of the platform
    fuzz::set_environment("lltcovRootpath", text);
    const auto is_sound = [&](int at, bool value_is_sound) {
        return numbers[at] == 0 || (numbers[at] == 1 && value_is_sound);
    };
    const bool all_are_sound = is_sound(0, !text.empty()) && is_sound(1, numbers[2] != -1) &&
                               is_sound(3, numbers[4] != -1);
    fuzz::same("the settings are sound", all_are_sound, init_lltld());
    if (all_are_sound) {
        fuzz::same("stub mode", numbers[5], g_lxprj->stubmode);
        fuzz::same("same names", numbers[6] == 2 ? 2 : 1, g_iSupportSameName);
        fuzz::same("root of the dumps", text, g_lxprj->lltcovRootpath);
    }
}

} // namespace

/// In the places of the system's: the program lies in the scratch directory, at a time of ours.
extern "C" ssize_t readlink(const char*, char* out, std::size_t size)
{
    return std::snprintf(out, size, "%s/program", fuzz::scratch().c_str());
}
extern "C" std::time_t time(std::time_t*) noexcept
{
    return now;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch();
    fuzz::set_environment("TZ", "UTC");
    fuzz::Input input(data, size);
    const char what = input.byte();
    (what == 't'   ? check_custom_type
     : what == 'c' ? check_clock
     : what == 'l' ? check_log
                   : check_policies)(input);
    return 0;
}
