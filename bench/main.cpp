#include "bench/main.h"

#include <cstddef>
#include <exception>
#include <filesystem>
#include <iostream>

int main(int count, char** arguments) {
    try {
        return quillon::bench::Main({arguments, static_cast<std::size_t>(count)});
    } catch (const std::exception& error) {
        std::cerr << std::filesystem::path(arguments[0]).filename().string() << ": " << error.what()
                  << '\n';
        return 2;
    }
}
