#include "toolkit/qt/window_icon.h"

#include <QPixmap>
#include <QtEndian>

namespace qt {

namespace {

// A directory of pictures, each of them a PNG file: Qt needs no plug-in to read those.
constexpr uchar kFile[] = {
#include "etm_control_icon.inc"
};
constexpr int kHeader = 6;
constexpr int kRow = 16;
constexpr int kSizeInRow = 8;
constexpr int kPlaceInRow = 12;

} // namespace

QIcon WindowIcon() {
    QIcon icon;
    const int count = qFromLittleEndian<quint16>(kFile + 4);
    for (int i = 0; i < count; ++i) {
        const uchar* row = kFile + kHeader + i * kRow;
        QPixmap picture;
        picture.loadFromData(kFile + qFromLittleEndian<quint32>(row + kPlaceInRow),
                             qFromLittleEndian<quint32>(row + kSizeInRow), "PNG");
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace qt
