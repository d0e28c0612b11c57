// Loads a library by its name, as an application of plug-ins does, and looks for a function of each component.
#include <dlfcn.h>

int main(int, char** argv) {
    void* const library = dlopen(argv[1], RTLD_NOW);
    return library != nullptr && dlsym(library, "_ZN4CBCDC1Ei") && dlsym(library, "_ZN3CDCC1Ev") ? 0 : 1;
}
