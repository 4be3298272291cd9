#pragma once

#include "platform/StatusItem.h"

#include <QColor>
#include <QIcon>

namespace velloway {

bool hasStatusImage(const StatusImage& image);
/// The image in one colour, at the sizes that trays ask for. Null when there is no such image.
QIcon statusIcon(const StatusImage& image, const QColor& colour);
/// What stands out on the panel of this desktop.
QColor panelTextColour();

} // namespace velloway
