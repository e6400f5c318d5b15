// The array's address comes from the global offset table, because the array is in another object.
// Only the registers are used that every call between modules may change anyway (r11; x15 to x17),
// so that even a function without a frame of the compiler's own stays whole.
//
// Two threads that count at once may lose one count, but never make a counter smaller than one of
// them made it; bits, which share a word, are set atomically for that reason.
#include "counter_code.h"

namespace
{

std::string number(std::size_t value)
{
    return std::to_string(value);
}

std::string x86_count(const Rewriting& how, std::size_t index)
{
    std::string code = "\tmovq\t" + how.array + "@GOTPCREL(%rip), %r11\n";
    if (how.counters == Counters::bits) {
        const std::string word = number(index / 32 * 4) + "(%r11)\n";
        const std::string bit = "$" + number(std::size_t{1} << index % 32) + ", " + word;
        const std::string label = ".Lllt_set" + number(index);
        return code + "\ttestl\t" + bit + "\tjne\t" + label + "\n\tlock orl\t" + bit + label +
               ":\n";
    }
    // The comparison borrows unless the counter is full; the borrow is then added.
    const bool bytes = how.counters == Counters::bytes;
    const std::string size = bytes ? "b" : "l";
    const std::string counter = number(bytes ? index : index * 4) + "(%r11)\n";
    return code + "\tcmp" + size + "\t$-1, " + counter + "\tadc" + size + "\t$0, " + counter;
}

std::string arm_count(const Rewriting& how, std::size_t index)
{
    const bool bytes = how.counters == Counters::bytes;
    const bool bits = how.counters == Counters::bits;
    const std::size_t offset = bytes ? index : (bits ? index / 32 : index) * 4;
    std::string code =
        "\tadrp\tx16, :got:" + how.array + "\n\tldr\tx16, [x16, :got_lo12:" + how.array + "]\n";
    if (offset >= 4096) {
        code += "\tadd\tx16, x16, #" + number(offset / 4096) + ", lsl #12\n";
    }
    const std::string counter = ", [x16, #" + number(offset % 4096) + "]\n";
    if (bits) {
        const std::string label = ".Lllt_set" + number(index);
        return code + "\tadd\tx16, x16, #" + number(offset % 4096) + "\n" + label +
               "_again:\n\tldxr\tw17, [x16]\n\ttbnz\tw17, #" + number(index % 32) + ", " + label +
               "\n\torr\tw17, w17, #" + number(std::size_t{1} << index % 32) +
               "\n\tstxr\tw15, w17, [x16]\n\tcbnz\tw15, " + label + "_again\n" + label + ":\n";
    }
    const std::string b = bytes ? "b" : "";
    return code + "\tldr" + b + "\tw17" + counter +
           (bytes ? "\tcmp\tw17, #255\n" : "\tcmn\tw17, #1\n") + "\tcinc\tw17, w17, ne\n\tstr" + b +
           "\tw17" + counter;
}

} // namespace

std::string count_at_call(Machine machine, const Rewriting& how, std::size_t index)
{
    return machine == Machine::x86_64 ? x86_count(how, index) : arm_count(how, index);
}

std::string count_anywhere(Machine machine, const Rewriting& how, std::size_t index)
{
    if (machine == Machine::x86_64) {
        // 128 bytes below the stack pointer may hold the function's variables. The flags go through
        // ah and, overflow, al: "popfq" is so slow that loops took several times as long.
        return "\tleaq\t-128(%rsp), %rsp\n\tpushq\t%rax\n\tpushq\t%r11\n\tlahf\n\tseto\t%al\n" +
               x86_count(how, index) +
               "\taddb\t$127, %al\n\tsahf\n\tpopq\t%r11\n\tpopq\t%rax\n"
               "\tleaq\t128(%rsp), %rsp\n";
    }
    return "\tstp\tx16, x17, [sp, #-32]!\n\tmrs\tx17, nzcv\n\tstp\tx17, x15, [sp, #16]\n" +
           arm_count(how, index) +
           "\tldp\tx17, x15, [sp, #16]\n\tmsr\tnzcv, x17\n\tldp\tx16, x17, [sp], #32\n";
}
