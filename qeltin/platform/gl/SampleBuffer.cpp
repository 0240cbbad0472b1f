#include "qeltin/platform/gl/SampleBuffer.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>

namespace qeltin::detail {

namespace {

GLuint Attach(GLenum place, GLenum format, int samples, int width, int height) {
  GLuint name = 0;
  glGenRenderbuffers(1, &name);
  glBindRenderbuffer(GL_RENDERBUFFER, name);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, place, GL_RENDERBUFFER, name);
  return name;
}

}  // namespace

void SampleBuffer::Make(int width, int height, int samples) {
  m_iWidth = width;
  m_iHeight = height;
  GLint offered = 0;
  glGetIntegerv(GL_MAX_SAMPLES, &offered);
  int const wished = std::min(samples, offered);
  if (wished < 1) return;
  glGenFramebuffers(1, &m_iFramebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, m_iFramebuffer);
  m_iColors = Attach(GL_COLOR_ATTACHMENT0, GL_RGBA8, wished, width, height);
  m_iDepths = Attach(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, wished, width, height);
  if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
    glGetIntegerv(GL_SAMPLES, &m_iSamples);
  } else {
    Delete();
  }
}

void SampleBuffer::Delete() {
  glDeleteFramebuffers(1, &m_iFramebuffer);
  glDeleteRenderbuffers(1, &m_iColors);
  glDeleteRenderbuffers(1, &m_iDepths);
  m_iFramebuffer = m_iColors = m_iDepths = 0;
  m_iSamples = 0;
}

void SampleBuffer::Bind() const {
  if (m_iFramebuffer != 0) glBindFramebuffer(GL_FRAMEBUFFER, m_iFramebuffer);
}

void SampleBuffer::Resolve() const {
  if (m_iFramebuffer == 0) return;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  GLboolean const isCut = glIsEnabled(GL_SCISSOR_TEST);  // which would cut the copy too
  glDisable(GL_SCISSOR_TEST);
  glBlitFramebuffer(0, 0, m_iWidth, m_iHeight, 0, 0, m_iWidth, m_iHeight, GL_COLOR_BUFFER_BIT,
                    GL_NEAREST);
  if (isCut == GL_TRUE) glEnable(GL_SCISSOR_TEST);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace qeltin::detail
