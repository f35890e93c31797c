// Where the nodes of an edited page must be in its new source.

#ifndef QO_PAGE_EDITS_NEW_PLACES_H
#define QO_PAGE_EDITS_NEW_PLACES_H

#include <cstddef>

#include <qo_page/edits/edit_writer.h>
#include <qo_page/tree/tree.h>

namespace qo {

// Takes memory for the edits alone, not for the nodes.
class NewPlaces {
 public:
  struct Place {
    Extent extent;
    bool is_renamed;
  };

  NewPlaces(const WrittenEdit& written, const Tree& tree) : written_(written), tree_(tree) {}

  // The nodes that are still there, but for texts, in document order; none after the last one.
  NodeIndex next();
  NodeIndex peek() const;

  // The place of one of them. Takes time for the logarithm of the number of changes.
  Place place_of(NodeIndex node) const;

 private:
  std::size_t shifted(std::size_t offset, std::size_t changes) const;
  std::size_t moved(std::size_t offset) const;
  std::size_t moved_end(std::size_t offset) const;

  const WrittenEdit& written_;
  const Tree& tree_;
  NodeIndex next_ = document_index + 1;
  std::size_t next_gone_ = 0;
};

}  // namespace qo

#endif
