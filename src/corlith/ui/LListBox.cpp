#include <corlith/ui/LListBox.h>

void CLListBox::EnsureVisible(const int& index) {
  // wx asserts on an index outside the list; the original's message just failed.
  if (index < 0 || static_cast<unsigned int>(index) >= GetCount()) return;
  SetFirstItem(index);
}

void CLListBox::UnselectAll() {
  if (HasMultipleSelection()) {
    for (unsigned int i = 0; i < GetCount(); ++i) Deselect(static_cast<int>(i));
  } else {
    SetSelection(wxNOT_FOUND);
  }
}
