// Dialog templates as data, and the one builder that turns them into wx windows. A
// template gives sizes and positions in dialog units of its font; the builder sets the
// font first and converts with wx's dialog units (a unit is a quarter of the font's mean
// character width across, an eighth of its height down), so every dialog keeps the
// proportions it was designed with. Item ids become the window ids.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include <wx/gdicmn.h>

class wxWindow;

namespace corlith::ui {

/// What an item of a template becomes.
enum class DialogItemKind {
  Button,         ///< wxButton
  DefaultButton,  ///< wxButton, the dialog's default
  Label,          ///< wxStaticText, left-aligned
  Edit,           ///< wxTextCtrl, one line
  MultiLineEdit,  ///< wxTextCtrl, several lines
  CheckBox,       ///< wxCheckBox
  ComboBox,       ///< wxComboBox (drop-down list)
  ListBox,        ///< wxListBox
  GroupBox,       ///< wxStaticBox
  Picture,        ///< wxStaticBitmap, empty until the dialog sets its bitmap
  Custom,         ///< made by the dialog itself (CreateItem)
};

/// Where an edge of an item stays when a resizable dialog changes size: at a percentage
/// of the size gained across and down (0: with the top-left corner, 100: with the
/// bottom-right corner).
struct DialogAnchor {
  int x = 0;
  int y = 0;
};
inline constexpr DialogAnchor kTopLeft{0, 0};
inline constexpr DialogAnchor kTopRight{100, 0};
inline constexpr DialogAnchor kBottomLeft{0, 100};
inline constexpr DialogAnchor kBottomRight{100, 100};

/// One control of a template, in dialog units.
struct DialogItem {
  DialogItemKind kind = DialogItemKind::Label;
  int id = -1;
  const char* text = "";
  int x = 0;
  int y = 0;
  int cx = 0;
  int cy = 0;
  /// The original template's style bits, kept for reference and for kinds whose look
  /// depends on them (a label's alignment: SS_CENTER 1, SS_RIGHT 2).
  std::uint32_t style = 0;
  /// Anchors of the top-left and bottom-right corners (resizable dialogs only).
  DialogAnchor topLeft = kTopLeft;
  DialogAnchor bottomRight = kTopLeft;
};

/// A dialog template.
struct DialogTemplate {
  int id = 0;  ///< the resource id (the dialog's window id)
  int cx = 0;  ///< client width in dialog units
  int cy = 0;  ///< client height in dialog units
  const char* caption = "";
  const char* fontFace = "Tahoma";
  int fontPoints = 8;
  bool resizable = false;
  bool titleBar = true;  ///< false: no caption bar (a bare pop-up)
  std::span<const DialogItem> items;
};

/// Makes the control for an item that the builder does not know (Custom), or null to
/// let the builder make it. Given the item's pixel rectangle.
using DialogItemFactory =
    std::function<wxWindow*(wxWindow* parent, const DialogItem& item, const wxRect& rect)>;

/// Sets `dialog`'s font and client size from `tpl` and creates its items in template
/// order (so the tab order is the template's). `dialog` must already be created.
void BuildDialogItems(wxWindow& dialog, const DialogTemplate& tpl, const DialogItemFactory& factory = {});

/// An item's rectangle in pixels of `dialog` (whose font must be set).
wxRect DialogItemRect(const wxWindow& dialog, const DialogItem& item);

}  // namespace corlith::ui
