// A listener to lookups that leave their tables, for tools that tell users how far a model was driven beyond its data.
//
// Nobody listens unless a tool asks for it; a lookup inside its table never looks here.
#pragma once

struct KZB_STORE;
struct KZB_TABLE;

namespace kzb {

class LookupWatch {
  public:
    virtual ~LookupWatch() = default;
    // `coordinates` [count] as the table saw them, of a lookup below or above a grid of `store`.
    virtual void left_table(const KZB_STORE& store, const KZB_TABLE& table, const double* coordinates, int count) = 0;
};

// Of the calling thread; null: nobody listens. The watch must outlive its place here.
LookupWatch* lookup_watch() noexcept;
void set_lookup_watch(LookupWatch* watch) noexcept;

}  // namespace kzb
