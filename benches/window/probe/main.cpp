// What of the window has to be measured from inside, one probe a start. The bench starts it on its display.

#include "services/InterfaceLanguage.h"
#include "services/QtConnections.h"

#include <cstdlib>
#include <string>
#include <vector>

#include "window/probe/BareTree.h"
#include "window/probe/Figures.h"
#include "window/probe/Gestures.h"
#include "window/probe/Photographs.h"
#include "window/probe/ProbeWindow.h"

using namespace ombrel;
using namespace ombrel::bench;

namespace {

bool run(const std::vector<std::string>& words) {
    const std::string& part = words.front();
    if (part == "gestures" && words.size() == 3)
        probeGestures(words[1], words[2]);
    else if (part == "make-photographs" && words.size() == 3)
        makePhotographs(words[1], std::atoi(words[2].c_str()));
    else if (part == "photographs" && words.size() == 2)
        probePhotographs(words[1]);
    else
        return false;
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    if (words.empty()) return 2;
    if (words.front() == "bare" && words.size() == 2) {
        const QApplication application(argc, argv);
        return showBareTree(words[1]);
    }
    ProbeApplication application(argc, argv);
    const QtConnections connections(InterfaceLanguage{}, QtConnections::Logging::silent);
    if (!run(words)) return 2;
    Figures::tell("done", 1);
    return 0;
}
