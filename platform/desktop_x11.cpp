#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>

#include "platform/desktop.h"
#include "platform/x11_support.h"

namespace wavetrace::platform {
namespace {

// The values of a 32-bit list property (windows, atoms, cardinals).
std::vector<unsigned long> ListProperty(Display* display, Window window, Atom property, Atom type) {
  Atom actualType = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long after = 0;
  unsigned char* data = nullptr;
  std::vector<unsigned long> values;
  if (XGetWindowProperty(display, window, property, 0, 4096, False, type, &actualType, &format, &count,
                         &after, &data) == Success &&
      data && actualType == type && format == 32) {
    auto* items = reinterpret_cast<unsigned long*>(data);  // format 32 comes as longs
    values.assign(items, items + count);
  }
  if (data) XFree(data);
  return values;
}

}  // namespace

struct Desktop::Connection {
  Display* display = nullptr;
  Window root = None;
  Atom clientList = None;
  Atom activeWindow = None;
  Atom wmCheck = None;
  Atom wmName = None;
  Atom utf8 = None;
  Atom wmState = None;
  Atom skipTaskbar = None;
  Atom windowType = None;
  Atom typeDock = None;
  Atom typeDesktop = None;
  Atom wmPid = None;

  // EWMH: the root names a check window that names itself.
  [[nodiscard]] bool WindowManager() const {
    auto check = ListProperty(display, root, wmCheck, XA_WINDOW);
    if (check.empty()) return false;
    auto self = ListProperty(display, check[0], wmCheck, XA_WINDOW);
    x11::TakeError();
    return !self.empty() && self[0] == check[0];
  }

  std::string Title(Window window) const {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    std::string title;
    if (XGetWindowProperty(display, window, wmName, 0, 1024, False, utf8, &type, &format, &count, &after,
                           &data) == Success &&
        data && type == utf8 && format == 8) {
      title.assign(reinterpret_cast<char*>(data), count);
    }
    if (data) XFree(data);
    if (!title.empty()) return title;
    XTextProperty text{};
    if (XGetWMName(display, window, &text) && text.value) {
      char** list = nullptr;
      int items = 0;
      if (Xutf8TextPropertyToTextList(display, &text, &list, &items) >= Success && list && items > 0) {
        title = list[0];
      }
      if (list) XFreeStringList(list);
      XFree(text.value);
    }
    return title;
  }
};

Desktop::Desktop() : connection_(std::make_unique<Connection>()) {
  Connection& c = *connection_;
  c.display = x11::Open(unavailable_);
  if (!c.display) return;
  c.root = DefaultRootWindow(c.display);
  auto atom = [&](const char* name) { return XInternAtom(c.display, name, False); };
  c.clientList = atom("_NET_CLIENT_LIST");
  c.activeWindow = atom("_NET_ACTIVE_WINDOW");
  c.wmCheck = atom("_NET_SUPPORTING_WM_CHECK");
  c.wmName = atom("_NET_WM_NAME");
  c.utf8 = atom("UTF8_STRING");
  c.wmState = atom("_NET_WM_STATE");
  c.skipTaskbar = atom("_NET_WM_STATE_SKIP_TASKBAR");
  c.windowType = atom("_NET_WM_WINDOW_TYPE");
  c.typeDock = atom("_NET_WM_WINDOW_TYPE_DOCK");
  c.typeDesktop = atom("_NET_WM_WINDOW_TYPE_DESKTOP");
  c.wmPid = atom("_NET_WM_PID");
}

Desktop::~Desktop() {
  if (connection_->display) XCloseDisplay(connection_->display);
}

bool Desktop::HasWindowManager() const {
  return connection_->display && connection_->WindowManager();
}

std::vector<DesktopWindow> Desktop::TopLevelWindows() {
  Connection& c = *connection_;
  std::vector<DesktopWindow> windows;
  if (!c.display) return windows;
  std::vector<unsigned long> ids;
  if (c.WindowManager()) ids = ListProperty(c.display, c.root, c.clientList, XA_WINDOW);
  if (ids.empty()) {
    // A bare server: the top-level windows are the root's children.
    Window rootReturn = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(c.display, c.root, &rootReturn, &parent, &children, &count) && children) {
      ids.assign(children, children + count);
    }
    if (children) XFree(children);
  }
  for (unsigned long id : ids) {
    XWindowAttributes attributes{};
    if (!XGetWindowAttributes(c.display, id, &attributes)) {
      x11::TakeError();
      continue;  // gone meanwhile
    }
    DesktopWindow window;
    window.Id = id;
    window.Title = c.Title(id);
    XClassHint hint{};
    if (XGetClassHint(c.display, id, &hint)) {
      if (hint.res_class) window.ClassName = hint.res_class;
      if (hint.res_name) XFree(hint.res_name);
      if (hint.res_class) XFree(hint.res_class);
    }
    Window child = None;
    int x = 0;
    int y = 0;
    XTranslateCoordinates(c.display, id, c.root, 0, 0, &x, &y, &child);
    window.X = x;
    window.Y = y;
    window.Width = attributes.width;
    window.Height = attributes.height;
    window.Mapped = attributes.map_state == IsViewable;
    auto states = ListProperty(c.display, id, c.wmState, XA_ATOM);
    auto types = ListProperty(c.display, id, c.windowType, XA_ATOM);
    auto has = [](const std::vector<unsigned long>& list, Atom value) {
      return std::find(list.begin(), list.end(), value) != list.end();
    };
    window.SkipTaskbar = has(states, c.skipTaskbar) || has(types, c.typeDock) || has(types, c.typeDesktop);
    auto pid = ListProperty(c.display, id, c.wmPid, XA_CARDINAL);
    if (!pid.empty()) window.Pid = static_cast<int64_t>(pid[0]);
    x11::TakeError();
    windows.push_back(std::move(window));
  }
  return windows;
}

bool Desktop::IsWindow(uint64_t id) {
  Connection& c = *connection_;
  if (!c.display || id == 0) return false;
  XWindowAttributes attributes{};
  bool exists = XGetWindowAttributes(c.display, id, &attributes) != 0;
  x11::TakeError();
  return exists;
}

bool Desktop::Activate(uint64_t id) {
  Connection& c = *connection_;
  if (!IsWindow(id)) return false;
  if (c.WindowManager()) {
    // Asked as a pager would: window managers honour that without their
    // focus-stealing rules.
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = id;
    event.xclient.message_type = c.activeWindow;
    event.xclient.format = 32;
    event.xclient.data.l[0] = 2;
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(c.display, c.root, False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
  } else {
    XMapRaised(c.display, id);
    XSync(c.display, False);
    XSetInputFocus(c.display, id, RevertToPointerRoot, CurrentTime);
  }
  XSync(c.display, False);
  return x11::TakeError() == 0;
}

}  // namespace wavetrace::platform
