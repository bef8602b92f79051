#include "melodex/ui/display_transition.h"

namespace melodex {

String DisplayTransition::typeName(Type type) {
    return type == Fade ? "fade" : "cut";
}

bool DisplayTransition::typeFromName(std::string_view name, Type& type) {
    if (name == "cut") {
        type = Cut;
        return true;
    }
    if (name == "fade") {
        type = Fade;
        return true;
    }
    return false;
}

}  // namespace melodex
