#pragma once

#include <QColor>

#include <cstdint>

namespace zkr {

// The program keeps colours in the desktop's &H00BBGGRR order: red is the
// low byte. Values with the high bit set name system colours and are not
// converted here.
inline QColor fromBgr(std::uint32_t bgr) {
    return QColor(static_cast<int>(bgr & 0xFFu), static_cast<int>((bgr >> 8) & 0xFFu),
                  static_cast<int>((bgr >> 16) & 0xFFu));
}

} // namespace zkr
