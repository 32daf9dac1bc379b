// A current desktop OpenGL context without any display: Mesa's surfaceless EGL platform,
// a context with no configuration and no surface, drawing into a framebuffer object of
// the size asked for. Header-only: a test that uses it links OpenGL::EGL and
// OpenGL::OpenGL (or OpenGL::GL) itself.
#pragma once

#include <EGL/egl.h>
#include <EGL/eglext.h>
#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>
#include <GL/glext.h>

#include <string>

namespace corlith::test {

class HeadlessGlContext {
 public:
  /// Makes the context current with a width x height RGBA framebuffer object bound and
  /// the viewport set to it; Error() says what failed when it could not.
  HeadlessGlContext(int width, int height) {
    const auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (!getPlatformDisplay) {
      m_error = "no eglGetPlatformDisplayEXT";
      return;
    }
    m_display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (m_display == EGL_NO_DISPLAY || !eglInitialize(m_display, nullptr, nullptr)) {
      m_error = "no surfaceless EGL display (Mesa's libegl-mesa0 and libgl1-mesa-dri)";
      m_display = EGL_NO_DISPLAY;
      return;
    }
    if (!eglBindAPI(EGL_OPENGL_API)) {
      m_error = "EGL cannot bind desktop OpenGL";
      return;
    }
    m_context = eglCreateContext(m_display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
    if (m_context == EGL_NO_CONTEXT ||
        !eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context)) {
      m_error = "no current OpenGL context: EGL error " + std::to_string(eglGetError());
      return;
    }
    glGenRenderbuffers(1, &m_colour);
    glBindRenderbuffer(GL_RENDERBUFFER, m_colour);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glGenFramebuffers(1, &m_framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_colour);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
      m_error = "the framebuffer object is incomplete";
      return;
    }
    glViewport(0, 0, width, height);
  }
  ~HeadlessGlContext() {
    if (m_framebuffer) glDeleteFramebuffers(1, &m_framebuffer);
    if (m_colour) glDeleteRenderbuffers(1, &m_colour);
    if (m_display != EGL_NO_DISPLAY) {
      eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
      if (m_context != EGL_NO_CONTEXT) eglDestroyContext(m_display, m_context);
      // The display is left initialised on purpose: terminating it unloads Mesa's driver,
      // which loses a few bytes on the way out, and LeakSanitizer cannot name (and so
      // cannot suppress) frames of a library that is gone. The display is process-wide;
      // the next context initialises it again at no cost.
    }
  }
  HeadlessGlContext(const HeadlessGlContext&) = delete;
  HeadlessGlContext& operator=(const HeadlessGlContext&) = delete;

  bool Ok() const { return m_error.empty(); }
  /// What failed; empty when the context is current.
  const std::string& Error() const { return m_error; }

 private:
  EGLDisplay m_display = EGL_NO_DISPLAY;
  EGLContext m_context = EGL_NO_CONTEXT;
  GLuint m_colour = 0;
  GLuint m_framebuffer = 0;
  std::string m_error;
};

}  // namespace corlith::test
