// Uses the installed user-interface library: without a wx application Start() refuses
// and the headless prompts stay; the filter conversion and a menu item list work as the
// library documents them. Needs no display.
#include <corlith/ui/CorlithUi.h>

#include <cstdio>

int main() {
  const bool refused = !corlith::ui::Start();
  const bool headless = dynamic_cast<corlith::HeadlessHostPrompt*>(corlith::GetHostPrompt().get()) != nullptr;
  const bool wildcard = corlith::ui::WildcardOfFilter("Board (*.brd)|*.brd||") == "Board (*.brd)|*.brd";
  CMenu menu;
  const bool menuOk = menu.AppendMenu(MF_STRING, 1, "&Open") && menu.GetMenuItemCount() == 1;
  const bool ok = refused && headless && wildcard && menuOk;
  std::printf("Corlith UI from the installed package: %s\n", ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
