// Linked into every program of a sanitizer build (see CMakeLists.txt): the
// game, its tests, the fuzz targets and the data generator.
//
// fontconfig keeps some of its matching state for good; that is not ours to
// free. Read only by the leak checker.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}
