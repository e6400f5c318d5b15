// An INI file under one to six operations. Each is a letter and three lines: "w" writes SECTION,
// KEY, VALUE; "r" reads SECTION, KEY into a buffer whose size is the first character of the third
// line, the rest of which is the default; "i" reads a number, "l" loads the file. Then a letter
// (no file for "-", a long one for "p") and the content.
#include "commonfunc/ini_profile.h"
#include "commonfunc/message.h"
#include "fuzz/fuzz.h"
#include "fuzz/models.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace
{

constexpr char PATH[] = "settings.ini";
constexpr std::size_t LARGEST = 131071;

struct Operation {
    char what;
    std::string section, key, value;
};

/// What the operations see of a content.
std::string seen(const std::string& content)
{
    const std::string text = content.substr(0, LARGEST);
    return text.substr(0, text.find('\xff')).c_str();
}

void check_read(const Operation& operation, const std::string& content)
{
    const std::string text = seen(content);
    const fuzz::IniPlaces at = fuzz::ini_search(operation.section, operation.key, text);
    const bool is_found = at.value[0] >= 0;
    const std::string value = is_found
                                  ? text.substr(static_cast<std::size_t>(at.value[0]),
                                                static_cast<std::size_t>(at.value[1] - at.value[0]))
                                  : "";
    if (operation.what == 'i') {
        const int number =
            read_profile_int(operation.section.c_str(), operation.key.c_str(), -7, PATH);
        fuzz::same(
            "number",
            is_found ? static_cast<int>(std::strtol(value.substr(0, 31).c_str(), nullptr, 10)) : -7,
            number);
        return;
    }
    const std::size_t size =
        operation.value.empty() ? 0 : static_cast<unsigned char>(operation.value[0]) % 40;
    const std::string fallback = operation.value.substr(size > 0 ? 1 : 0);
    std::string expected(size, '#');
    if (size > 0) {
        expected = is_found ? value.substr(0, size - 1) : fallback.substr(0, size);
        expected.resize(size, '\0'); // a default that fills the buffer has no NUL
    }
    fuzz::Buffer out(size);
    const int found =
        read_profile_string(operation.section.c_str(), operation.key.c_str(), out.data(),
                            static_cast<int>(size), fallback.c_str(), PATH);
    fuzz::same("the value is found", is_found, found);
    fuzz::same("value in its buffer", expected, out.bytes());
}

void check_load(const std::string& content, bool exists)
{
    fuzz::Buffer buffer(INI_BUFFER_SIZE);
    int length = -1;
    fuzz::same("the file is loaded", exists, load_ini_file(PATH, buffer.data(), &length));
    const std::string text = content.substr(0, LARGEST).substr(0, content.find('\xff'));
    fuzz::same("length of the text", static_cast<long long>(text.size()), length);
    fuzz::same("text", exists ? text + '\0' : "",
               buffer.bytes().substr(0, exists ? text.size() + 1 : 0));
}

/// Writes, and gives the content that is there then.
std::string check_write(const Operation& operation, const std::string& content)
{
    const std::string changed =
        fuzz::ini_with(seen(content), operation.section, operation.key, operation.value);
    const bool fits = content.size() <= LARGEST && changed.size() <= LARGEST;
    fuzz::same("the value is written", fits,
               write_profile_string(operation.section.c_str(), operation.key.c_str(),
                                    operation.value.c_str(), PATH));
    return fits ? changed : content;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::scratch();
    const HeldMessages quiet;
    fuzz::Input input(data, size);
    std::vector<Operation> operations;
    char letter = input.byte();
    for (; operations.size() < 6 && std::strchr("wril", letter) != nullptr && letter != '\0';
         letter = input.byte()) {
        const std::string section = input.line(), key = input.line(), value = input.line();
        operations.push_back({letter, section, key, value});
    }
    bool exists = letter != '-';
    std::string content =
        exists ? (letter == 'p' ? std::string(LARGEST - 30, '\n') : "") + input.rest() : "";
    exists ? fuzz::write_file(PATH, content) : static_cast<void>(::unlink(PATH));
    for (const Operation& operation : operations) {
        if (operation.what == 'w') {
            const std::string after = check_write(operation, content);
            exists = exists || !after.empty();
            content = after;
            fuzz::same("content of the file", content, fuzz::read_file(PATH));
        } else if (operation.what == 'l') {
            check_load(content, exists);
        } else {
            check_read(operation, content);
        }
    }
    return 0;
}
