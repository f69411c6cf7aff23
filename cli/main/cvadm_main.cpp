#include "cli/cli.h"

int main(int argc, char** argv) { return MPCLI_Main(argc, argv); }
