#include <corlith/ui/LListBox.h>

void CLListBox::EnsureVisible(const int& index) {
  // wx asserts on an index outside the list; the original's message just failed.
  if (index < 0 || static_cast<unsigned int>(index) >= GetCount()) return;
  SetFirstItem(index);
}

void CLListBox::UnselectAll() { DeselectAll(); }
