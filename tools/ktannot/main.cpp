#include "tools/ktannot/Tool.h"

int main(int argc, char** argv) { return ktannot::runTool(argc, argv); }
