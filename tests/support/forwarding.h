// A forwarding base for every host interface; tests override what they need.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/basekit2/ref_counted.h"
#include "platform/optstore2/message_catalog_source.h"
#include "platform/panelcore_1/filter_mgr.h"
#include "platform/panelcore_1/request_handler.h"
#include "platform/qlib_1/input_data.h"
#include "platform/qlib_1/query_library.h"
#include "platform/qlib_1/table_tree.h"
#include "platform/relay2/messenger.h"
#include "platform/relay2/progress.h"
#include "platform/slicekit_1_0/table_tree_query.h"

namespace tessera_test {

using basekit2::error_code_t;
using basekit2::sptr_t;
using basekit2::type_id_t;
using basekit2::variant_bag_t;

class ForwardingMessenger : public relay2::IMessenger {
  public:
    explicit ForwardingMessenger(relay2::IMessenger& target) : m_target(target) {}
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        m_target.post(severity, text, position);
    }

  private:
    relay2::IMessenger& m_target;
};

class ForwardingProgress : public relay2::IProgress {
  public:
    explicit ForwardingProgress(const relay2::IProgress& target) : m_target(target) {}
    bool isCancelled() const override { return m_target.isCancelled(); }

  private:
    const relay2::IProgress& m_target;
};

class ForwardingRequestHandler : public panelcore_1::IRequestHandler {
  public:
    explicit ForwardingRequestHandler(std::shared_ptr<IRequestHandler> target)
        : m_target(std::move(target)) {}
    std::string getDomainName() const override { return m_target->getDomainName(); }
    void buildTaskName(const std::string& request, const variant_bag_t& in, std::string& taskName) override {
        m_target->buildTaskName(request, in, taskName);
    }
    error_code_t handleRequest(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                               relay2::IProgress* progress) override {
        return m_target->handleRequest(name, in, out, progress);
    }
    std::shared_ptr<panelcore_1::ITaskDisplacementStrategy> getTaskDisplacementStrategy() override {
        return m_target->getTaskDisplacementStrategy();
    }
    void close() override { m_target->close(); }

  private:
    std::shared_ptr<IRequestHandler> m_target;
};

class ForwardingFilterMgr : public panelcore_1::IFilterMgr {
  public:
    explicit ForwardingFilterMgr(std::shared_ptr<IFilterMgr> target) : m_target(std::move(target)) {}
    std::vector<std::string> getFilterNames() const override { return m_target->getFilterNames(); }

  private:
    std::shared_ptr<IFilterMgr> m_target;
};

class ForwardingStrategy : public panelcore_1::ITaskDisplacementStrategy {
  public:
    explicit ForwardingStrategy(std::shared_ptr<ITaskDisplacementStrategy> target)
        : m_target(std::move(target)) {}
    bool buildTaskName(const std::string& request, const variant_bag_t& in,
                       std::string& name) const override {
        return m_target->buildTaskName(request, in, name);
    }
    bool isMine(const std::string& task) const override { return m_target->isMine(task); }
    bool isExclusive(const std::string& task) const override { return m_target->isExclusive(task); }
    bool isDisplacedBy(const std::string& task, const std::string& other) const override {
        return m_target->isDisplacedBy(task, other);
    }
    bool isDisplacedOnFilterChange(const std::string& task) const override {
        return m_target->isDisplacedOnFilterChange(task);
    }
    bool isDisplacedOnKnobChange(const std::string& task) const override {
        return m_target->isDisplacedOnKnobChange(task);
    }

  private:
    std::shared_ptr<ITaskDisplacementStrategy> m_target;
};

class ForwardingCatalogSource : public optstore2::IMessageCatalogSource {
  public:
    explicit ForwardingCatalogSource(std::shared_ptr<const IMessageCatalogSource> target)
        : m_target(std::move(target)) {}
    std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(const std::string& name) const override {
        return m_target->getCatalog(name);
    }

  private:
    std::shared_ptr<const IMessageCatalogSource> m_target;
};

class ForwardingCatalog : public RTBASE_2_18::i18n::catalog_t {
  public:
    explicit ForwardingCatalog(std::shared_ptr<const catalog_t> target) : m_target(std::move(target)) {}
    bool has_message(const std::string& key) const override { return m_target->has_message(key); }
    RTBASE_2_18::i18n::message_t message(const std::string& key) const override {
        return m_target->message(key);
    }

  private:
    std::shared_ptr<const catalog_t> m_target;
};

// The counted interfaces keep a reference on their target.
template <class Interface>
class ForwardingObject : public basekit2::ref_counted_t<Interface> {
  public:
    explicit ForwardingObject(sptr_t<Interface> target) : m_target(std::move(target)) {}
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        if (id == Interface::typeId) return sptr_t<basekit2::IObject>::share(this);
        return m_target->queryInterface(id);
    }

  protected:
    Interface& target() const { return *m_target; }

  private:
    sptr_t<Interface> m_target;
};

class ForwardingQuery : public ForwardingObject<qlib_1::IQuery> {
  public:
    using ForwardingObject::ForwardingObject;
    std::string getIdentifier() const override { return target().getIdentifier(); }
};

class ForwardingVectorQuery : public ForwardingObject<qlib_1::IVectorQuery> {
  public:
    using ForwardingObject::ForwardingObject;
    std::string getIdentifier() const override { return target().getIdentifier(); }
    std::size_t size() const noexcept override { return target().size(); }
    sptr_t<qlib_1::IQuery> at(std::size_t index) const override { return target().at(index); }
};

class ForwardingQueryLibrary : public ForwardingObject<qlib_1::IQueryLibrary> {
  public:
    using ForwardingObject::ForwardingObject;
    sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                      relay2::IMessenger* messenger) override {
        return target().buildQuery(definition, messenger);
    }
    sptr_t<qlib_1::IQuery> getQuery(const std::string& name) override { return target().getQuery(name); }
};

class ForwardingInputData : public ForwardingObject<qlib_1::IInputData> {
  public:
    using ForwardingObject::ForwardingObject;
};

class ForwardingFilterRegistry : public ForwardingObject<qlib_1::IFilterRegistry> {
  public:
    using ForwardingObject::ForwardingObject;
    bool hasFilter(const std::string& name) const override { return target().hasFilter(name); }
};

class ForwardingEngine : public ForwardingObject<slicekit_1_0::ITableTreeEngine> {
  public:
    using ForwardingObject::ForwardingObject;
    error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress,
                     bool wait, sptr_t<qlib_1::ITableTree>& tree) override {
        return target().run(request, progress, wait, tree);
    }
};

class ForwardingTableTree : public ForwardingObject<qlib_1::ITableTree> {
  public:
    using ForwardingObject::ForwardingObject;
    std::size_t getColumnCount() const noexcept override { return target().getColumnCount(); }
    sptr_t<qlib_1::IColumnInfo> getColumn(std::size_t index) const override {
        return target().getColumn(index);
    }
    std::size_t getRowCount() const noexcept override { return target().getRowCount(); }
    sptr_t<qlib_1::ITableRow> getRow(std::size_t index) const override { return target().getRow(index); }
};

class ForwardingColumnInfo : public ForwardingObject<qlib_1::IColumnInfo> {
  public:
    using ForwardingObject::ForwardingObject;
    std::uint32_t getFlags() const noexcept override { return target().getFlags(); }
    sptr_t<qlib_1::IQuery> getQuery() const override { return target().getQuery(); }
    std::size_t getMemberIndex() const noexcept override { return target().getMemberIndex(); }
};

class ForwardingTableRow : public ForwardingObject<qlib_1::ITableRow> {
  public:
    using ForwardingObject::ForwardingObject;
    std::string getCellText(std::size_t column) const override { return target().getCellText(column); }
};

}  // namespace tessera_test
