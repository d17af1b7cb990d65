#include "HelixDash/services/RuntimeEnv.h"

RuntimeEnv* RuntimeEnv::instance() {
    static RuntimeEnv environment;
    return &environment;
}
