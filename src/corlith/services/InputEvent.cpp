#include <corlith/services/InputEvent.h>

#include <corlith/framework/DesktopHooks.h>

#include <GL/gl.h>

#include <utility>

// --- CIE__Base -------------------------------------------------------------------------

CIE__Base::CIE__Base() { CIE__Base::Init(); }

CIE__Base::CIE__Base(const CIE__Base& other) = default;

CIE__Base& CIE__Base::operator=(const CIE__Base& other) = default;

CIE__Base::~CIE__Base() { DestroyMouseCapture(); }

void CIE__Base::Init() {
  m_nSavedLogicOp = 0;
  m_nFlag_DrawPrevXOR = 1;
}

void CIE__Base::SetFlag_DrawPrevXOR(int flag) { m_nFlag_DrawPrevXOR = flag; }

CString CIE__Base::GetInputEventName() const { return "CIE__Base"; }

void CIE__Base::OnLButtonDown(UINT, CPoint&) {}
void CIE__Base::OnRButtonDown(UINT, CPoint&) {}
void CIE__Base::OnMButtonDown(UINT, CPoint&) {}
void CIE__Base::OnMouseMove(UINT, CPoint&) {}
void CIE__Base::OnLButtonUp(UINT, CPoint&) {}
void CIE__Base::OnRButtonUp(UINT, CPoint&) {}
void CIE__Base::OnKeyDown(UINT, UINT, UINT) {}
void CIE__Base::OnChar(UINT, UINT, UINT) {}

void CIE__Base::BeginMode_XOR() const {
  glDisable(GL_DEPTH_TEST);
  glEnable(GL_COLOR_LOGIC_OP);
  GLint mode = 0;
  glGetIntegerv(GL_LOGIC_OP_MODE, &mode);
  m_nSavedLogicOp = mode;
  glLogicOp(GL_XOR);
}

void CIE__Base::EndMode_XOR() const {
  glLogicOp(static_cast<GLenum>(m_nSavedLogicOp));
  glDisable(GL_COLOR_LOGIC_OP);
}

void CIE__Base::DestroyMouseCapture() { corlith::GetDesktopHooks()->ReleaseMouseCapture(); }

// --- CInputEventManager ----------------------------------------------------------------

CInputEventManager::CInputEventManager() { CInputEventManager::Init(); }

CInputEventManager::~CInputEventManager() {
  while (!m_suspended.empty()) {
    const std::shared_ptr<CIE__Base> gone = std::move(m_suspended.back());
    m_suspended.pop_back();
  }
  const std::shared_ptr<CIE__Base> gone = std::move(m_pCurrent);
}

void CInputEventManager::Init() {
  m_pCurrent.reset();
  m_nDeleteCurrentAfterExecute = 0;
}

int CInputEventManager::CanExistAtSameTime(const CIE__Base*, const CIE__Base*) const { return 1; }

std::shared_ptr<CIE__Base> CInputEventManager::Adopt(CIE__Base* event) {
  // A tool already held (current, suspended, or by a copy of this manager) keeps its
  // one owner group, so that it is destroyed once.
  if (std::shared_ptr<CIE__Base> held = event->weak_from_this().lock()) return held;
  return std::shared_ptr<CIE__Base>(event);
}

void CInputEventManager::SetCurrentInputEvent(CIE__Base* event) {
  if (!event) return;
  std::shared_ptr<CIE__Base> adopted = Adopt(event);
  if (CanExistAtSameTime(event, m_pCurrent.get()) != 0) {
    if (m_pCurrent) m_suspended.push_back(m_pCurrent);
  } else {
    DeleteCurrentEventNow();
  }
  m_pCurrent = std::move(adopted);
}

void CInputEventManager::PushCurrentInputEvent() {
  if (m_pCurrent) m_suspended.push_back(m_pCurrent);
}

void CInputEventManager::PushInputEvent(CIE__Base* event) {
  if (event) m_suspended.push_back(Adopt(event));
}

void CInputEventManager::DeleteCurrentInputEvent() {
  if (m_pCurrent) {
    m_pCurrent->ShowDebugMessageWhenDeleted();
    // The slot is empty before the tool's destructor runs, in case it asks the manager.
    std::shared_ptr<CIE__Base> gone = std::move(m_pCurrent);
    gone.reset();
  }
  SetCursor();
}

void CInputEventManager::DeleteCurrentEventNow() {
  DeleteCurrentInputEvent();
  m_nDeleteCurrentAfterExecute = 0;
}

void CInputEventManager::DeleteCurrentEventAndPopInputEvent() {
  DeleteCurrentInputEvent();
  if (m_suspended.empty()) {
    m_pCurrent.reset();
    return;
  }
  m_pCurrent = std::move(m_suspended.back());
  m_suspended.pop_back();
}

void CInputEventManager::DeleteAllInputEvent() {
  while (!m_suspended.empty()) {
    std::shared_ptr<CIE__Base> gone = std::move(m_suspended.back());
    m_suspended.pop_back();
    gone.reset();
  }
  DeleteCurrentInputEvent();
}

std::shared_ptr<CIE__Base> CInputEventManager::PopInputEvent(int activate) {
  std::shared_ptr<CIE__Base> popped;
  if (!m_suspended.empty()) {
    popped = std::move(m_suspended.back());
    m_suspended.pop_back();
  }
  if (activate != 0) {
    DeleteCurrentEventNow();
    SetCurrentInputEvent(popped.get());
  }
  return popped;
}

void CInputEventManager::EventEndingProcess() {
  if (m_nDeleteCurrentAfterExecute != 0) static_cast<void>(PopInputEvent(1));
}

void CInputEventManager::SetCursor() const {
  if (m_pCurrent) {
    m_pCurrent->SetCursor();
  } else {
    corlith::GetDesktopHooks()->SetArrowCursor();
  }
}

template <class Forward>
void CInputEventManager::Dispatch(bool ends, Forward forward) {
  if (!m_pCurrent) return;
  {
    // A tool may end itself from its own handler: it lives until the handler returns.
    const std::shared_ptr<CIE__Base> running = m_pCurrent;
    forward(*running);
  }
  if (ends) EventEndingProcess();
}

void CInputEventManager::OnLButtonDown(UINT nFlags, CPoint& point) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnLButtonDown(nFlags, point); });
}
void CInputEventManager::OnMouseMove(UINT nFlags, CPoint& point) {
  Dispatch(false, [&](CIE__Base& tool) { tool.OnMouseMove(nFlags, point); });
}
void CInputEventManager::OnLButtonUp(UINT nFlags, CPoint& point) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnLButtonUp(nFlags, point); });
}
void CInputEventManager::OnRButtonDown(UINT nFlags, CPoint& point) {
  Dispatch(false, [&](CIE__Base& tool) { tool.OnRButtonDown(nFlags, point); });
}
void CInputEventManager::OnRButtonUp(UINT nFlags, CPoint& point) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnRButtonUp(nFlags, point); });
}
void CInputEventManager::OnMButtonDown(UINT nFlags, CPoint& point) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnMButtonDown(nFlags, point); });
}
void CInputEventManager::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnKeyDown(nChar, nRepCnt, nFlags); });
}
void CInputEventManager::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
  Dispatch(true, [&](CIE__Base& tool) { tool.OnChar(nChar, nRepCnt, nFlags); });
}
