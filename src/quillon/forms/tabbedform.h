#pragma once

namespace quillon {

/// A form that can be told which of its tabs to show before it is shown itself.
class TabbedForm {
public:
    virtual ~TabbedForm() = default;
    /// Shows the tab of that index, from 0; an index that the form does not have changes nothing.
    virtual void showTab(int tab) = 0;
};

} // namespace quillon
