// SPDX-License-Identifier: MIT
#include "components/component_process.h"

int main(int argc, char** argv)
{
    return havrel::componentMain(havrel::ComponentKind::Switchboard, "havrel-switchboard", argc, argv);
}
