// The dialog's program.
#include <clocale>
#include <cstdlib>

#include "main/KinsortProgram.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxUserAccount.h"

int main(int argc, char** argv) {
    std::setlocale(LC_CTYPE, "");  // the language of the system's own texts
    std::setlocale(LC_MESSAGES, "");
    kinsort::PrepareLinuxProcess();
    kinsort::QtProgram toolkit("Kinsort");
    kinsort::KinsortProgram program(toolkit, kinsort::ExecutableFile());
    program.Run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    return EXIT_SUCCESS;
}
