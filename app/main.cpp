#include "app/program.h"

int main(int argumentCount, char** arguments) {
    return quillon::RunProgram(argumentCount, arguments);
}
