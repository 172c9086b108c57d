// SPDX-License-Identifier: AGPL-3.0-or-later
// Console hosting set-up: message thread and a forgiving X error handler.
#include "HostEnvironment.h"

#include <dlfcn.h>

namespace
{
// Without a window manager, Xvfb answers some atom and property requests with errors (BadAtom);
// Xlib's default handler would exit. A plug-in's editor or message box must not end a render.
int ignoreXError (void*, void*)
{
    return 0;
}

bool installLenientXErrorHandler()
{
    // The framework loads Xlib at run time, so the library is not linked here either: if it is
    // missing, there is no display to fail on.
    auto* library = dlopen ("libX11.so.6", RTLD_LAZY | RTLD_GLOBAL);
    if (library == nullptr)
        return false;

    using Handler = int (*) (void*, void*);
    using SetHandler = Handler (*) (Handler);
    auto* setHandler = reinterpret_cast<SetHandler> (dlsym (library, "XSetErrorHandler"));
    if (setHandler == nullptr)
        return false;

    setHandler (ignoreXError);
    return true;
}
} // namespace

HostEnvironment::HostEnvironment()
    : lenientXErrorsInstalled (installLenientXErrorHandler())
{
}

HostEnvironment::~HostEnvironment() = default;
