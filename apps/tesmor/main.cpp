#include "tesmor/command.h"

int main(int argc, char** argv)
{
    return tesmor::apps::runCommand(argc, argv);
}
