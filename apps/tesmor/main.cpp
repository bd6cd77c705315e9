// SPDX-License-Identifier: GPL-2.0-or-later
#include "tesmor/command.h"

int main(int argc, char** argv)
{
    return tesmor::apps::runCommand(argc, argv);
}
