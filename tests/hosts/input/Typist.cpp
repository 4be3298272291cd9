#include "hosts/linux/input/X11Input.h"

#include <cstdio>
#include <string>
#include <unistd.h>

/// Types many characters that no layout has, over and over, until it is killed.
int main() {
    velloway::X11Input input;
    std::puts("ready");
    std::fflush(stdout);
    for (char16_t first = 0x4E00; first < 0x9000; first += 30) {
        std::u16string text;
        for (char16_t offset = 0; offset < 30; ++offset) {
            text.push_back(static_cast<char16_t>(first + offset));
        }
        input.postText(text);
    }
    pause();
}
