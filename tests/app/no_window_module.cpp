/// A library that is no window's module.
extern "C" int QuillonMakesNothing() {
    return 0;
}
