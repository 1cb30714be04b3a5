// Must not compile: the analysis may not use Qt Widgets.
#include <QtWidgets/QWidget>

int zkrWidgetsProbe() {
    return sizeof(QWidget) > 0 ? 1 : 0;
}
