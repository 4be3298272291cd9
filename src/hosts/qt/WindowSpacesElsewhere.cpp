#include "hosts/qt/WindowSpaces.h"

#include <QWindow>

namespace velloway {

void floatOverEverything(QWindow& /*window*/) {}

void joinAllSpaces(QWindow& /*window*/) {}

void activateForUser(QWindow& window) {
    window.requestActivate();
}

bool canSystemMove(const QWindow& /*window*/) {
    return true;
}

} // namespace velloway
