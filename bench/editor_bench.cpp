// Times the editor on the offscreen platform: a new process from its start to the first painted
// main window, against a minimal Qt dialog; and opening a 400-gun file through the real window
// and its chooser until the table shows it.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <cstring>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "bench_guns.h"
#include "core/core.h"
#include "platform/number_text.h"
#include "shell/document.h"
#include "shell/qt/gun_list_control.h"
#include "shell/qt/gun_list_dialog.h"
#include "shell/qt/tessarine_app.h"

namespace {

constexpr int kGuns = 400;

// Notes the first paint of a top-level window of type T.
template <typename T>
class FirstPaint : public QObject {
 public:
  bool painted = false;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Paint && qobject_cast<T*>(watched)) painted = true;
    return false;
  }
};

// Shows the window and pumps events until it has painted.
void showAndPaint(QWidget* window) {
  FirstPaint<QWidget> watch;
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

using Clock = std::chrono::steady_clock;

constexpr const char* kChildOption = "--first-paint-child";

// Times a new process from its start (fork and exec of this program, so that loading Qt counts)
// to the first paint of its window: the child runs `program` ("editor" or "minimal"), writes
// one byte to the pipe at that paint and then ends its window itself.
void timeFromStartToFirstPaint(benchmark::State& state, const char* program) {
  for (auto _ : state) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) return state.SkipWithError("no pipe");
    Clock::time_point start = Clock::now();
    pid_t child = fork();
    if (child == 0) {
      close(pipeEnds[0]);
      std::string done = std::to_string(pipeEnds[1]);
      execl("/proc/self/exe", "editor_bench", kChildOption, program, done.c_str(), nullptr);
      _exit(127);
    }
    close(pipeEnds[1]);
    char byte = 0;
    bool painted = read(pipeEnds[0], &byte, 1) == 1;
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    close(pipeEnds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!painted || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      return state.SkipWithError("the window never painted or the program failed");
    }
  }
}

// On the first paint of a T: tells `done`, then closes the window as the user would.
template <typename T>
void reportFirstPaint(int done, FirstPaint<T>* watch) {
  QTimer* poll = new QTimer(qApp);
  QObject::connect(poll, &QTimer::timeout, [=] {
    if (!watch->painted) return;
    poll->stop();
    char byte = 1;
    if (write(done, &byte, 1) != 1) _exit(1);
    if (QWidget* window = QApplication::activeModalWidget()) {
      QMetaObject::invokeMethod(window, "reject", Qt::QueuedConnection);
    }
  });
  poll->start(0);
}

void minimalDialogProgram(int done) {
  int argc = 1;
  char name[] = "minimal";
  char* argv[] = {name, nullptr};
  QApplication application(argc, argv);
  FirstPaint<QDialog> watch;
  application.installEventFilter(&watch);
  reportFirstPaint(done, &watch);
  QDialog dialog;
  dialog.resize(300, 100);
  new QLabel(QStringLiteral("Hello"), &dialog);
  (new QPushButton(QStringLiteral("Close"), &dialog))->move(200, 60);
  dialog.exec();
}

// The editor's main with the watch added, in a scratch start-up directory.
void editorProgram(int done) {
  ScratchDirectory scratch;
  char name[] = "tessarine";
  runWithQt(name, [done] {
    FirstPaint<GunListDialog> watch;
    qApp->installEventFilter(&watch);
    reportFirstPaint(done, &watch);
    return InitInstance();
  });
}

void MinimalQtDialogStartToFirstPaint(benchmark::State& state) {
  timeFromStartToFirstPaint(state, "minimal");
}
BENCHMARK(MinimalQtDialogStartToFirstPaint)
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

void TessarineStartToFirstPaint(benchmark::State& state) {
  timeFromStartToFirstPaint(state, "editor");
}
BENCHMARK(TessarineStartToFirstPaint)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

// The Open command on the real window: the chooser (answered as soon as it shows), the load of
// 400 guns into the table and the window's repaint.
void Open400GunsThroughTheWindow(benchmark::State& state) {
  // The application object comes only now, in the process that runs the benchmarks.
  static int argc = 1;
  static char name[] = "editor_bench";
  static char* argv[] = {name, nullptr};
  if (!qApp) new QApplication(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
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
  if (argc == 4 && std::strcmp(argv[1], kChildOption) == 0) {
    int done = numParseInt(argv[3]);
    std::strcmp(argv[2], "editor") == 0 ? editorProgram(done) : minimalDialogProgram(done);
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
