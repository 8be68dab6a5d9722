#include "platform/linux/x11/WindowProperty.h"

#include "platform/linux/x11/XHandles.h"

#include <X11/Xlib.h>

namespace orlune {

std::optional<unsigned long> propertyItem(Display* display, Window window, const char* name,
                                          Atom wantedType) {
    const Atom property = XInternAtom(display, name, /*only_if_exists=*/True);
    if (property == None) {
        return std::nullopt;
    }
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    const int status = XGetWindowProperty(display, window, property, 0, 1, /*delete=*/False,
                                          wantedType, &type, &format, &count, &rest, &bytes);
    const XOwned<unsigned char> owned(bytes);
    if (status != Success || format != 32 || count == 0) {
        return std::nullopt;
    }
    return *reinterpret_cast<unsigned long*>(bytes); // Xlib returns such items as longs
}

} // namespace orlune
