// Registers the value types before `main`. No other unit refers to this one, so it is linked as an object: a linker
// leaves out the members of an archive that are not referred to.
#include "Core/System/Reflection/DescribedTypes.h"

#include "Core/System/Reflection/TypeRegistry.h"

#include <cstddef>
#include <initializer_list>

namespace Orvik::System::Reflection
{
namespace
{

using Types::EnumValue;
using namespace Runtime::AutomationTarget;
using namespace Runtime::Device;
using namespace Runtime::Execution;

/// Registers `T` by being constructed.
template <typename T>
struct Registration
{
    Registration(std::string_view name, std::string_view guid, std::string_view description = {},
                 std::initializer_list<FieldDescription> fields = {})
    {
        TypeRegistry::GetInstance().RegisterType<T>(name, description, ParseGuid(guid), fields);
    }
};

template <typename T>
constexpr std::uint32_t Id = TypeIdentity<T>::typeId;

const Registration<PodArray<PodString>> s_stringArray("StringArray", "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}");
const Registration<PodArray<std::int64_t>> s_int64Array("Int64Array", "{401B7BA5-5B1F-41A1-9B38-D13E7F59AC53}");
const Registration<PodArray<Size2>> s_size2Array("Size2Array", "{867529E6-31A4-4A2D-BC5F-5507257B039C}");
const Registration<EnumValue<TargetOperatingSystem>> s_targetOperatingSystem("TargetOperatingSystem",
                                                                             "{1A322CD4-EFA6-41DD-8C1C-F4E8466BAB09}");
const Registration<EnumValue<CapabilityClassType>> s_capabilityClassType("CapabilityClassType",
                                                                         "{F790FED1-FD0F-4F86-8252-2C871749FB95}");
const Registration<EnumValue<CapabilityState>> s_capabilityState("CapabilityState",
                                                                 "{F25F9B05-4972-44D3-944A-746F47706E5C}");
const Registration<EnumValue<CommandValueType>> s_commandValueType("CommandValueType",
                                                                   "{2F15CD33-BA36-42C5-A7F0-41CBA07C3093}");
const Registration<EnumValue<FundamentalValueType>> s_fundamentalValueType("FundamentalValueType",
                                                                           "{8A548819-423B-41BF-ACCD-289756A58ECE}");
const Registration<PodString> s_string("String", "{5762230B-B392-4B55-863B-7A06542152EB}", "A runtime string");
const Registration<PodBytes> s_bytes("Bytes", "{8173529C-095D-42CF-9605-4A176497C9DB}", "A runtime byte array");
const Registration<EnumValue<TargetClass>> s_targetClass("TargetClass", "{DE2D38A9-517C-42A9-8270-54CCA0E4E62A}");
const Registration<Image> s_image("Image", "{10C2B4D2-BE1D-4CD6-863E-890F32BA5557}", "",
                                  {{"bytes", Id<PodBytes>, offsetof(Image, bytes)},
                                   {"bitsPerPixel", Id<std::int64_t>, offsetof(Image, bitsPerPixel)},
                                   {"height", Id<std::int64_t>, offsetof(Image, height)},
                                   {"width", Id<std::int64_t>, offsetof(Image, width)}});
const Registration<GUID> s_guid("Guid", "{601D319D-5E22-4C9E-9F84-3492796DE067}", "A 128-bit guid",
                                {{"m_lowPart", UnsignedTypeId, offsetof(GUID, m_lowPart)},
                                 {"m_highPart", UnsignedTypeId, offsetof(GUID, m_highPart)}});
// Has the same GUID as Int64; only the ids have to differ.
const Registration<Coordinate2> s_coordinate2("Coordinate2", "{164B6651-C16C-46A5-AE1C-2A75C90F93D3}",
                                              "A 2-dimensional coordinate",
                                              {{"y", Id<std::int64_t>, offsetof(Coordinate2, y)},
                                               {"x", Id<std::int64_t>, offsetof(Coordinate2, x)}});
const Registration<Size2> s_size2("Size2", "{5120C7DF-1455-4954-A331-C1B3E57BC7D8}", "A 2-dimensional size",
                                  {{"height", Id<std::int64_t>, offsetof(Size2, height)},
                                   {"width", Id<std::int64_t>, offsetof(Size2, width)}});
const Registration<std::int64_t> s_int64("Int64", "{164B6651-C16C-46A5-AE1C-2A75C90F93D3}", "A 64-bit integer");
const Registration<double> s_double("Double", "{F1047C74-8099-42FE-9330-5F2879DA7E5E}", "A 64-bit floating point");

} // namespace
} // namespace Orvik::System::Reflection
