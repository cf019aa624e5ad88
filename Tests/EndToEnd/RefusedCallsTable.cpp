// The table of refused calls.
#include "Tests/EndToEnd/RefusedCalls.h"

#include <cerrno>
#include <sys/syscall.h>

namespace Orvik::Tests
{
namespace
{

using enum Outcome;

constexpr int s_always = 1'000'000'000;

// What is not in it: calls without which no program is loaded, those that can't fail, and the small memory of the JSON
// library, which doesn't look whether it got it.
constexpr RefusedCall s_calls[] = {
    // Memory that is shared with the server: the capture comes through the connection, the overlay from own memory.
    {"memfd_create", Way::System, SYS_memfd_create, ENOSYS, Snip},
    {"memfd_create", Way::System, SYS_memfd_create, EMFILE, Snip},
    {"ftruncate", Way::System, SYS_ftruncate, ENOSPC, Snip},
    {"madvise", Way::System, SYS_madvise, EINVAL, Snip},
    {"fcntl", Way::Returns, -1, EPERM, Snip},
    {"mmap", Way::Returns, -1, ENOMEM, Snip},
    {"XShmQueryVersion", Way::Returns, 0, 0, Snip},
    {"XShmCreateImage", Way::Returns, 0, 0, Snip},
    {"xcb_shm_attach_fd_checked", Way::NoWindow, 0, 0, Snip},
    {"xcb_connection_has_error", Way::Returns, 1, 0, Snip},
    {"XShmGetImage", Way::Returns, 0, 0, Snip},
    {"XShmGetImage", Way::NoWindow, 0, 0, Snip},
    // Then nothing can be captured, which the log says: the overlay is empty until Escape.
    {"XGetImage", Way::Returns, 0, 0, Unheard, Run::Raster, 1, s_always, nullptr, 0, "XShmGetImage"},
    {"XGetImage", Way::NoWindow, 0, 0, Unheard, Run::Raster, 1, s_always, nullptr, 0, "XShmGetImage"},
    {"XGetGeometry", Way::Returns, 0, 0, Unheard},
    {"XGetGeometry", Way::NoWindow, 0, 0, Unheard},
    // Processes: other runs, the program's own path and name.
    {"readlinkat", Way::System, SYS_readlinkat, EACCES, Snip},
    {"pidfd_open", Way::System, SYS_pidfd_open, ENOSYS, Snip},
    {"pidfd_send_signal", Way::System, SYS_pidfd_send_signal, EPERM, Snip},
    {"prctl", Way::System, SYS_prctl, EPERM, Snip},
    {"sigaltstack", Way::System, SYS_sigaltstack, ENOMEM, Snip},
    {"getrandom", Way::System, SYS_getrandom, ENOSYS, Snip},
    {"eventfd2", Way::System, SYS_eventfd2, EMFILE, Snip},
    {"sched_getaffinity", Way::System, SYS_sched_getaffinity, EPERM, Snip},
    {"clone3", Way::System, SYS_clone3, EAGAIN, Snip},
    {"pthread_create", Way::Returns, EAGAIN, 0, Snip},
    {"sigaction", Way::Returns, -1, EINVAL, Snip},
    {"poll", Way::Returns, -1, ENOMEM, Snip},
    {"ppoll", Way::Returns, -1, ENOMEM, Snip},
    {"ppoll", Way::Returns, -1, EINTR, Snip},
    {"sysconf", Way::Returns, -1, EINVAL, Snip},
    // Entries of /proc that are gone.
    {"opendir", Way::Returns, 0, EMFILE, Snip},
    {"readdir", Way::Returns, 0, EIO, Snip},
    {"open", Way::Returns, -1, ENOENT, Snip, Run::Raster, 1, s_always, "/proc/"},
    {"openat", Way::Returns, -1, ENOENT, Snip, Run::Raster, 1, s_always, "stat", 1},
    {"openat", Way::Returns, -1, ENOENT, Snip, Run::Raster, 1, s_always, "maps", 1},
    {"openat", Way::Returns, -1, EMFILE, Snip, Run::Raster, 1, s_always, "comm", 1, "readlinkat"},
    {"readlinkat", Way::Returns, -1, ENOENT, Snip},
    {"read", Way::Returns, -1, ESRCH, Snip},
    {"read", Way::Returns, 0, 0, Snip},
    // Files and directories.
    {"rename", Way::System, SYS_rename, EROFS, NoJson},
    {"unlink", Way::System, SYS_unlink, EROFS, Snip},
    {"mkdir", Way::System, SYS_mkdir, EACCES, Report},
    {"mkdir", Way::Returns, -1, EACCES, Snip, Run::Raster, 1, s_always, nullptr, 0, nullptr, false},
    {"getdents64", Way::System, SYS_getdents64, EACCES, Snip, Run::Raster, 1, s_always, nullptr, 0, nullptr, false},
    {"fopen", Way::Returns, 0, EMFILE, NoRenderer}, // nothing that it draws with
    {"fopen", Way::Returns, 0, EACCES, NoFiles, Run::Raster, 1, s_always, "/out/"},
    {"fopen", Way::Returns, 0, EMFILE, NoPicture, Run::Picture},
    {"fdopen", Way::Returns, 0, ENOMEM, Snip, Run::Raster, 1, s_always, nullptr, 0, nullptr, false},
    {"fread", Way::Returns, 0, EIO, NoRenderer},
    {"fwrite", Way::Returns, 0, ENOSPC, NoJson},
    {"fwrite", Way::Returns, 1, ENOSPC, NoJson}, // short
    {"fclose", Way::Fails, -1, EIO, NoJson},
    {"localtime_r", Way::Returns, 0, EOVERFLOW, Report},
    {"png_create_write_struct", Way::Returns, 0, 0, NoJson},
    {"png_create_info_struct", Way::Returns, 0, 0, NoJson},
    {"png_create_read_struct", Way::Returns, 0, 0, NoPicture, Run::Picture},
    {"libdeflate_alloc_compressor", Way::Returns, 0, 0, NoJson},
    {"libdeflate_deflate_compress", Way::Returns, 0, 0, NoJson},
    {"FT_Init_FreeType", Way::Returns, 64, 0, NoRenderer},
    {"FT_New_Memory_Face", Way::Returns, 64, 0, NoRenderer},
    {"FT_Set_Pixel_Sizes", Way::Returns, 64, 0, Snip}, // without texts
    {"FT_Load_Char", Way::Returns, 64, 0, Snip},
    // The display.
    {"socket", Way::System, SYS_socket, EMFILE, NoDisplay},
    {"connect", Way::System, SYS_connect, ECONNREFUSED, NoDisplay},
    {"XOpenDisplay", Way::Returns, 0, 0, NoDisplay},
    {"XRRQueryExtension", Way::Returns, 0, 0, Snip},
    {"XRRQueryVersion", Way::Returns, 0, 0, Snip},
    {"XRRGetMonitors", Way::Returns, 0, 0, Snip},
    {"XRRGetMonitors", Way::NoWindow, 0, 0, Snip},
    {"XRRGetScreenResourcesCurrent", Way::Returns, 0, 0, Snip},
    {"XRRGetScreenResourcesCurrent", Way::NoWindow, 0, 0, Snip},
    {"XRRGetOutputInfo", Way::Returns, 0, 0, Snip},
    {"XRRGetCrtcInfo", Way::Returns, 0, 0, Snip},
    {"XGetAtomName", Way::Returns, 0, 0, Snip},
    {"XGetInputFocus", Way::Returns, 0, 0, Snip},
    {"XQueryExtension", Way::Returns, 0, 0, Snip},
    // The window. A request for it that the server refuses refuses the window.
    {"XCreateWindow", Way::NoWindow, 0, 0, NoWindow},
    {"XCreateColormap", Way::NoWindow, 0, 0, NoWindow},
    {"XInternAtom", Way::Returns, 0, 0, NoWindow},
    {"XChangeProperty", Way::NoWindow, 0, 0, NoWindow},
    {"XSelectInput", Way::NoWindow, 0, 0, NoWindow},
    {"XSetWMProtocols", Way::NoWindow, 0, 0, NoWindow},
    {"XISelectEvents", Way::NoWindow, 0, 0, NoWindow},
    {"XRRSelectInput", Way::NoWindow, 0, 0, NoWindow},
    {"Xutf8SetWMProperties", Way::NoWindow, 0, 0, NoWindow},
    {"XSaveContext", Way::Returns, 2, 0, NoWindow},
    {"XFindContext", Way::Returns, 2, 0, NoWindow},
    {"XGetEventData", Way::Returns, 0, 0, Unheard},
    {"XCreateFontCursor", Way::Returns, 0, 0, Snip},
    {"XGetSelectionOwner", Way::Returns, 0, 0, Snip},
    {"XDefineCursor", Way::NoWindow, 0, 0, Snip},
    {"XMapRaised", Way::NoWindow, 0, 0, Unheard},
    {"XRaiseWindow", Way::NoWindow, 0, 0, Snip},
    {"XSetInputFocus", Way::NoWindow, 0, 0, Snip},
    {"XSetWMHints", Way::NoWindow, 0, 0, Snip},
    {"XStoreName", Way::NoWindow, 0, 0, Snip},
    {"XWithdrawWindow", Way::NoWindow, 0, 0, Snip, Run::Delay},
    {"XDestroyWindow", Way::NoWindow, 0, 0, Snip},
    {"xcb_query_tree_reply", Way::Returns, 0, 0, Snip, Run::Covered},
    {"xcb_get_window_attributes_reply", Way::Returns, 0, 0, Snip, Run::Covered},
    // The devices.
    {"XISelectEvents", Way::Returns, 1, 0, Snip},
    {"XIQueryVersion", Way::Returns, 1, 0, Snip},
    {"XIQueryDevice", Way::Returns, 0, 0, Snip},
    {"XkbQueryExtension", Way::Returns, 0, 0, Snip},
    {"XkbSetDetectableAutoRepeat", Way::Returns, 0, 0, Snip},
    {"XkbSelectEvents", Way::Returns, 0, 0, Snip},
    {"XkbLookupKeySym", Way::Returns, 0, 0, Snip, Run::Keys},
    {"XGrabKeyboard", Way::Returns, 1, 0, Snip},
    {"XGrabKeyboard", Way::NoWindow, 0, 0, Snip},
    {"XGrabPointer", Way::Returns, 1, 0, Snip},
    {"XGrabPointer", Way::NoWindow, 0, 0, Snip},
    {"XQueryPointer", Way::Returns, 0, 0, Snip},
    {"XQueryPointer", Way::NoWindow, 0, 0, Snip},
    {"XTestQueryExtension", Way::Returns, 0, 0, Snip, Run::Keys},
    {"XTestFakeMotionEvent", Way::Returns, 0, 0, Snip, Run::Keys},
    {"XWarpPointer", Way::NoWindow, 0, 0, Snip, Run::Keys, 1, s_always, nullptr, 0, "XTestQueryExtension"},
    {"XFixesQueryExtension", Way::Returns, 0, 0, Snip},
    {"XFixesQueryVersion", Way::Returns, 0, 0, Snip},
    {"XFixesHideCursor", Way::NoWindow, 0, 0, Snip},
    {"XFixesShowCursor", Way::NoWindow, 0, 0, Snip},
    {"XFixesCreateRegion", Way::Returns, 0, 0, Snip},
    {"XFixesSetWindowShapeRegion", Way::NoWindow, 0, 0, Snip},
    // What is drawn.
    {"XGetWindowAttributes", Way::Returns, 0, 0, Unseen},
    {"XGetWindowAttributes", Way::NoWindow, 0, 0, Unseen},
    {"XCreateImage", Way::Returns, 0, 0, Unseen},
    {"XCreateGC", Way::NoWindow, 0, 0, Unseen},
    {"XShmPutImage", Way::NoWindow, 0, 0, Unseen},
    {"XShmPutImage", Way::Returns, 0, 0, Unseen},
    {"XPutImage", Way::NoWindow, 0, 0, Unseen, Run::Raster, 1, s_always, nullptr, 0, "XShmQueryVersion"},
    // Each step of the way to OpenGL.
    {"eglGetPlatformDisplay", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglInitialize", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglBindAPI", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglBindAPI", Way::Returns, 0, 0, NoRenderer, Run::OpenGL, 2},
    {"eglChooseConfig", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglChooseConfig", Way::Returns, 0, 0, NoRenderer, Run::OpenGL, 2},
    {"eglGetConfigAttrib", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"XGetVisualInfo", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"XGetWindowAttributes", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglCreateWindowSurface", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglCreateContext", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglMakeCurrent", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"eglGetProcAddress", Way::Returns, 0, 0, NoRenderer, Run::OpenGL},
    {"glGetString", Way::Returns, 0, 0, Snip, Run::OpenGL},
    {"eglSwapInterval", Way::Returns, 0, 0, Snip, Run::OpenGL},
    {"eglSwapBuffers", Way::Returns, 0, 0, Unseen, Run::OpenGL},
    {"eglDestroyContext", Way::Returns, 0, 0, Snip, Run::OpenGL},
    {"eglDestroySurface", Way::Returns, 0, 0, Snip, Run::OpenGL},
    // Descriptors used up.
    {"descriptors", Way::Descriptors, 4, 0, NoDisplay},
    {"descriptors", Way::Descriptors, 5, 0, NoDisplay},
    {"descriptors", Way::Descriptors, 6, 0, NoRenderer},
    {"descriptors", Way::Descriptors, 7, 0, Snip},
    {"descriptors", Way::Descriptors, 8, 0, Snip},
    {"descriptors", Way::Descriptors, 9, 0, Snip},
    // Memory: none at all from some moment on, not even for a report, and a single piece.
    {"calloc", Way::Returns, 0, ENOMEM, Assertion},
    {"_Znwm", Way::NoMemory, 0, 0, Abort},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 10},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 100},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 300},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 1000},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 2000},
    {"_Znwm", Way::NoMemory, 0, 0, Report, Run::Raster, 1, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 3, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 10, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 30, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 60, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 100, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 150, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 200, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 300, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 400, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 500, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 600, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 700, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 800, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 900, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 1000, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 1200, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 1400, 1},
    {"_Znwm", Way::NoMemory, 0, 0, AnyDefined, Run::Raster, 1600, 1},
};

} // namespace

const char* Describe(Outcome outcome)
{
    switch (outcome)
    {
    case Snip:
        return "both snips, Success";
    case NoJson:
        return "both pictures' files, no JSON file, Success";
    case NoFiles:
        return "no files, Success";
    case Unseen:
        return "both snips, nothing seen, Success";
    case NoDisplay:
        return "Failed to initialize systems";
    case NoWindow:
        return "Failed to create window";
    case NoRenderer:
        return "Failed to initialize renderer";
    case NoPicture:
        return "Failed to load file";
    case Unheard:
        return "nothing follows the input, Success";
    case Report:
        return "unhandled exception, report";
    case Assertion:
        return "failed assertion, report";
    case Abort:
        return "abort, one line";
    case OneLost:
        return "a JSON file less, Success";
    case AnyDefined:
        return "any defined end";
    case Other:
        return "something else";
    case Fault:
        return "a fault";
    case Hang:
        return "a hang";
    }
    return "unknown";
}

std::span<const RefusedCall> GetRefusedCalls()
{
    return s_calls;
}

} // namespace Orvik::Tests
