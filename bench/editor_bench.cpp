// Times the editor on the offscreen platform: from nothing to the first painted main window
// (against a minimal Qt dialog), and opening a 400-gun file through the real window and its
// chooser until the table shows it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "bench_guns.h"
#include "core/core.h"
#include "shell/document.h"
#include "shell/qt/gun_list_control.h"
#include "shell/qt/gun_list_dialog.h"

namespace {

constexpr int kGuns = 400;

// Notes the first paint of the widget it watches.
class PaintWatch : public QObject {
 public:
  bool painted = false;
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) painted = true;
    return false;
  }
};

// Shows the window and pumps events until it has painted.
void showAndPaint(QWidget* window) {
  PaintWatch watch;
  window->installEventFilter(&watch);
  window->show();
  while (!watch.painted) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  QApplication::processEvents();
  window->removeEventFilter(&watch);
}

// A fresh working directory for the settings file, left again at the end.
class ScratchDirectory {
 public:
  ScratchDirectory() : previous_(std::filesystem::current_path()) {
    char pattern[] = "/tmp/tessarine-bench-XXXXXX";
    path_ = mkdtemp(pattern);
    std::filesystem::current_path(path_);
  }
  ~ScratchDirectory() {
    std::filesystem::current_path(previous_);
    std::filesystem::remove_all(path_);
  }
  const std::string& path() const { return path_; }

 private:
  std::filesystem::path previous_;
  std::string path_;
};

void MinimalDialogToFirstPaint(benchmark::State& state) {
  for (auto _ : state) {
    QDialog dialog;
    dialog.resize(300, 100);
    new QLabel(QStringLiteral("Hello"), &dialog);
    (new QPushButton(QStringLiteral("Close"), &dialog))->move(200, 60);
    showAndPaint(&dialog);
  }
}
BENCHMARK(MinimalDialogToFirstPaint)->Unit(benchmark::kMillisecond);

// The program's steps up to the first paint: window built, kernel up, the window's start
// (settings read and written, empty document), shown; then its end and the kernel's shutdown
// outside the timing.
void GunListWindowToFirstPaint(benchmark::State& state) {
  ScratchDirectory scratch;
  for (auto _ : state) {
    auto* window = new GunListDialog;
    CoreStartup();
    window->OnInitDialog();
    showAndPaint(window);
    state.PauseTiming();
    window->DestroyWindow();
    delete window;
    CoreShutdown();
    state.ResumeTiming();
  }
}
BENCHMARK(GunListWindowToFirstPaint)->Unit(benchmark::kMillisecond);

// The Open command on the real window: the chooser (answered as soon as it shows), the load of
// 400 guns into the table and the window's repaint.
void Open400GunsThroughTheWindow(benchmark::State& state) {
  ScratchDirectory scratch;
  writeBenchGuns(scratch.path(), kGuns);
  CoreStartup();
  auto* window = new GunListDialog;
  window->OnInitDialog();
  showAndPaint(window);
  for (auto _ : state) {
    std::function<void()> answer = [&] {
      auto* chooser = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      if (!chooser) return QTimer::singleShot(0, answer);
      chooser->selectFile(QStringLiteral("bench-guns.ini"));
      QMetaObject::invokeMethod(chooser, "accept");
    };
    QTimer::singleShot(0, answer);
    OnOpen(window);
    if (window->List()->RowCount() != kGuns) state.SkipWithError("the table isn't filled");
  }
  state.SetItemsProcessed(state.iterations() * kGuns);
  window->DestroyWindow();
  delete window;
  CoreShutdown();
}
BENCHMARK(Open400GunsThroughTheWindow)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  int qtArgc = 1;
  QApplication application(qtArgc, argv);
  std::setlocale(LC_NUMERIC, "C");
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
