// SPDX-License-Identifier: MIT
// Writes the description of each protocol's interface on the message bus.
//
// usage: write_interface_descriptions FOLDER
#include "messaging/interface_description.h"
#include "messaging/protocol.h"
#include "messaging/protocols.h"

#include <cstdio>
#include <fstream>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: write_interface_descriptions FOLDER\n", stderr);
        return 2;
    }
    for (const havrel::Protocol* each : havrel::protocols::all()) {
        const std::string name = std::string(argv[1]) + "/com.havrel." + each->name().toStdString() + ".xml";
        std::ofstream file(name);
        file << havrel::interfaceDescriptionOf(*each).toStdString();
        if (!file.flush()) {
            std::perror(name.c_str());
            return 1;
        }
    }
    return 0;
}
