#pragma once

#include <qpdf/QPDF.hh>

namespace lk::part {

// Takes out whatever a reader program would run, start or open by itself, attached files, and
// links to anything but pages of the file and web, mail and telephone addresses.
void removeActions(QPDF& pdf);

}  // namespace lk::part
