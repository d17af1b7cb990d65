#include "nvh/tables/VdtTestList.h"

QByteArray builtInVdtTests() {
    return R"({
        "0": {"Name": "Horn functionality"},
        "1": {"Name": "Windshield wiper functionality"},
        "2": {"Name": "Windshield washer nozzle aim"},
        "3": {"Name": "ABS check"},
        "4": {"Name": "WOT"},
        "5": {"Name": "Figure 8 for wheel rub"},
        "6": {"Name": "Tip in/out DU check"},
        "7": {"Name": "AM/FM radio check"},
        "8": {"Name": "BSR pass for squeaks and rattles"},
        "9": {"Name": "80mph pass on straightaway"}
    })";
}
