#ifndef KESTRELCORE_EXPORT_H
#define KESTRELCORE_EXPORT_H

#define KESTRELCORE_EXPORT __attribute__((visibility("default")))

#ifdef Success
#error "A macro Success, such as that of <X11/Xlib.h>, hides kestrel::system::ResultCode::Success. Include the headers of kestrelcore first, or #undef Success."
#endif

#endif  // KESTRELCORE_EXPORT_H
