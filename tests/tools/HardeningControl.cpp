// Built without the hardening flags, for the hardening test: a local array and libc calls
// that _FORTIFY_SOURCE would check, so that with the flags it would have both protections.
#include <cstdio>
#include <cstring>

int main(int argc, char** argv) {
    char buffer[64];
    snprintf(buffer, sizeof buffer, "%s", argc > 1 ? argv[1] : "");
    printf("%zu\n", strlen(buffer));
    return 0;
}
