// What every program of C++ takes from exec to exit.
#include <iostream>
#include <string>

int main(int argc, char**) { std::cout << std::string(static_cast<std::size_t>(argc - 1), ' ') << std::flush; }
