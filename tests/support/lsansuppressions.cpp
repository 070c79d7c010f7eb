// Qt's offscreen platform keeps its screen objects until the process dies;
// those are no leaks of ours.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libqoffscreen.so\n";
}
