#include "hosts/linux/input/X11Input.h"

#include <QString>

#include <cstdio>
#include <unistd.h>

/// Types many characters that no layout has, over and over, until it is killed.
int main() {
    velloway::X11Input input;
    std::puts("ready");
    std::fflush(stdout);
    for (char16_t first = 0x4E00; first < 0x9000; first += 30) {
        QString text;
        for (char16_t offset = 0; offset < 30; ++offset) {
            text.append(QChar(static_cast<char16_t>(first + offset)));
        }
        input.typeText(text.toStdString());
    }
    pause();
}
