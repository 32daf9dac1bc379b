// CLListBox: the framework's list box with two conveniences, scrolling an item to the top
// and clearing the whole selection. Otherwise it is a plain wxListBox.
#pragma once

#include <wx/listbox.h>

class CLListBox : public wxListBox {
 public:
  using wxListBox::wxListBox;

  /// Makes item `index` the list's top item (an index outside the list does nothing).
  /// Deliberately hides wxListBox::EnsureVisible(int), which only scrolls as far as
  /// needed: both visible at once would make every call ambiguous.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif
  void EnsureVisible(const int& index);
#ifdef __clang__
#pragma clang diagnostic pop
#endif
  /// Deselects every item.
  void UnselectAll();
};
