#include <QThreadPool>

// The toolkit's painter hands the rows of each path that is higher than some sixty to its pool of threads,
// and waits for them: for surfaces as small as ours the switching takes as long as the painting. The only
// thing that keeps it from that is to run in the pool already. So this definition, which takes the place of
// the library's own wherever the libraries are shared ones, says that everything does. Nothing but the
// painter and the conversion of pictures asks; where it has no effect nothing but time is lost.
bool QThreadPool::contains(const QThread*) const { return true; }
