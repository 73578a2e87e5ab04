#include "jet/verify/row_view.h"

namespace jet::verify {

using storage::Load;

/// The variable values' table, from the mask backwards: how many there are, where each starts (the
/// first one last), where the last one ends.
void RowView::Measure() {
    if (bytes_.size() < CountSize) {
        fault_ = "the row is too short";
        return;
    }
    columns_ = Load<std::uint16_t>(bytes_, 0);
    const std::size_t maskSize = (columns_ + 7) / 8;
    if (columns_ > shape_.columnsEver || CountSize + maskSize > bytes_.size()) {
        fault_ = "the row has an impossible number of columns";
        return;
    }
    maskStart_ = bytes_.size() - maskSize;
    fixedEnd_ = maskStart_;
    if (shape_.variableEver == 0) return;

    if (maskStart_ < CountSize + 2 * WordSize) {
        fault_ = "the row has no room for its variable values";
        return;
    }
    variables_ = Load<std::uint16_t>(bytes_, maskStart_ - WordSize);
    const std::size_t tableSize = (variables_ + 2) * WordSize;
    if (variables_ > shape_.variableEver || maskStart_ < CountSize + tableSize) {
        fault_ = "the row has an impossible number of variable values";
        return;
    }
    for (std::size_t slot = 0; slot < variables_; ++slot) {
        if (VariableStart(slot) > VariableStart(slot + 1)) {
            fault_ = "the row's variable values overlap";
            return;
        }
    }
    if (VariableStart(0) < CountSize || VariableStart(variables_) > maskStart_ - tableSize) {
        fault_ = "the row's variable values lie outside of it";
        return;
    }
    fixedEnd_ = VariableStart(0);
}

}  // namespace jet::verify
