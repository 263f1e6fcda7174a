#ifndef KESTRELCORE_EXPORT_H
#define KESTRELCORE_EXPORT_H

#define KESTRELCORE_EXPORT __attribute__((visibility("default")))

// clang-format off
#ifdef Success
#error "A macro Success, such as that of <X11/Xlib.h>, hides kestrel::system::ResultCode::Success. Include the headers of kestrelcore first, or #undef Success."
#endif
// clang-format on

#endif  // KESTRELCORE_EXPORT_H
