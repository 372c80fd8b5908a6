#include <QThreadPool>

// The toolkit's painter hands the rows of each path that is higher than some sixty to a pool of threads, and
// waits for them: for surfaces as small as ours the switching takes as long as the painting. It does the work
// itself where it runs in the pool already. So this definition, which takes the place of the library's own,
// says that everything does. Where it has no effect nothing but time is lost.
bool QThreadPool::contains(const QThread*) const { return true; }
